#include "Commands.h"
#include "InstallationOptions.h"
#include "Output.h"

#include <boost/json.hpp>
#include <iostream>

namespace tarvex::app {

namespace {

struct BackupOptions
{
    std::string target;
    std::optional<std::size_t> kept;
};

void printForPeople(const requests::Backup &made, const std::string &secret)
{
    std::cout << "The copy is " << made.file.string() << ", " << sizeInWords(made.bytes)
              << "; accounts in it: " << made.accounts << ".\n";
    if (made.hasSecret)
        std::cout << "The secret that logins are kept under is in " << made.file.string()
                  << ".secret; keep both, since nobody can sign in without it.\n";
    else
        std::cout << "There is no secret " << secret << " to copy; without it nobody can sign in.\n";
    for (const std::filesystem::path &file : made.removed)
        std::cout << "Removed " << file.string() << ".\n";
}

boost::json::value documentOf(const requests::Backup &made)
{
    boost::json::array removed;
    for (const std::filesystem::path &file : made.removed)
        removed.emplace_back(file.string());
    return {{"file", made.file.string()},
            {"bytes", made.bytes},
            {"accounts", made.accounts},
            {"has_secret", made.hasSecret},
            {"removed", removed}};
}

} // namespace

Command addBackup(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "backup", "Copy the database and its secret, PATH.secret, to a file or, under a name with the time,"
                  " into a folder. A server may run meanwhile");
    const auto options = std::make_shared<BackupOptions>();
    command->add_option("target", options->target, "The file or the folder")->required()->type_name("PATH");
    command
        ->add_option("--keep", options->kept,
                     "How many copies stay in the folder; the oldest beyond are removed")
        ->check(CLI::Range(1, 100'000))
        ->type_name("NUMBER");
    const auto isJson = addJsonOption(*command);
    return {command, [options, isJson, installation = addInstallationOptions(*command)] {
                const requests::InstallationFiles files = installation->files();
                const auto made = requests::backUp(files, options->target, options->kept, std::time(nullptr));
                *isJson ? printJson(documentOf(made)) : printForPeople(made, files.secret.string());
                return made.hasSecret ? 0 : 1;
            }};
}

} // namespace tarvex::app
