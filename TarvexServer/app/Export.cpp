#include "AccountOptions.h"
#include "Checks.h"
#include "Commands.h"
#include "Exporting.h"
#include "Output.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <system_error>
#include <unistd.h>

namespace tarvex::app {

namespace {

enum class ExportFormat { Json, Table };

struct ExportOptions
{
    std::string file;
    ExportFormat format = ExportFormat::Json;
    bool withDeleted = false;
};

/// Writes a file that only its owner can read and that was not there before; it is there in full or not at
/// all.
void writeNewFile(const std::string &file, const std::string &text)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    const bool isWritten =
        descriptor >= 0 && writeOut(descriptor, text) == text.size() && ::fsync(descriptor) == 0;
    const int error = errno;
    if (descriptor >= 0)
        ::close(descriptor);
    if (isWritten)
        return;
    if (descriptor >= 0)
        ::unlink(file.c_str());
    throw std::runtime_error("The file " + file +
                             " cannot be written: " + std::generic_category().message(error) + ".");
}

int exportAccount(const InstallationOptions &installation, const AccountOptions &account,
                  const ExportOptions &options)
{
    store::Database database = installation.existing();
    const auto exported =
        requests::exportAccount(database, account.find(database, installation), options.withDeleted);
    const auto written =
        options.format == ExportFormat::Json ? wire::writeExport(exported) : wire::writeTable(exported);
    if (!written)
        throw std::runtime_error("The table would be larger than 64 MiB; --format json has no such bound.");
    const std::string &text = *written;
    if (!options.file.empty())
        writeNewFile(options.file, text);
    else if (writeOut(STDOUT_FILENO, text) < text.size())
        throw std::runtime_error("The export cannot be written: " + std::generic_category().message(errno) +
                                 ".");
    return 0;
}

} // namespace

Command addExport(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "export",
        "Write all that is in an account, for its owner, for another installation or a spreadsheet");
    const auto options = std::make_shared<ExportOptions>();
    const std::map<std::string, ExportFormat> formats = {{"json", ExportFormat::Json},
                                                         {"csv", ExportFormat::Table}};
    command->add_option("--output", options->file, "A new file to write; without it, to standard output");
    command->add_option("--format", options->format, "How, of which import reads json")
        ->transform(oneOf(formats))
        ->type_name("json|csv")
        ->default_str("json");
    command->add_flag("--with-deleted", options->withDeleted,
                      "Also what was deleted lately, which import passes over");
    return {command, [options, account = addAccountOptions(*command),
                      installation = addInstallationOptions(*command)] {
                return exportAccount(*installation, *account, *options);
            }};
}

} // namespace tarvex::app
