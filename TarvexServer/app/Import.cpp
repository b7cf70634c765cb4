#include "AccountOptions.h"
#include "Commands.h"
#include "Exporting.h"
#include "Output.h"
#include "Password.h"

#include <ctime>
#include <fstream>
#include <iostream>

namespace tarvex::app {

namespace {

struct ImportOptions
{
    std::string file;
    bool isNew = false;
    std::string name; ///< of the account; that of the export unless it is given
};

/// All of a file, or as much as shows that it is too large.
std::string contentOf(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string text(wire::largestExport + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad() || !stream.is_open())
        throw std::runtime_error("The file " + file + " cannot be read.");
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

std::int64_t importInto(const InstallationOptions &installation, const AccountOptions &account,
                        const ImportOptions &options, const PasswordOptions &password,
                        const wire::AccountExport &imported)
{
    if (!options.isNew) {
        store::Database database = installation.existing();
        const std::int64_t accountId = account.find(database, installation);
        requests::importAccount(database, accountId, imported, std::time(nullptr));
        return accountId;
    }
    if (account.login.empty())
        throw requests::AccountProblem("A new account needs a --login.");
    const requests::AccountTexts texts{.login = account.login,
                                       .password = password.read(),
                                       .name = options.name.empty() ? imported.name : options.name};
    store::Database database = installation.orNew();
    return requests::createImported(database, installation.open(database), texts, std::time(nullptr),
                                    imported);
}

int importFile(const InstallationOptions &installation, const AccountOptions &account,
               const ImportOptions &options, const PasswordOptions &password, bool isJson)
{
    const wire::AccountExport imported = wire::readExport(contentOf(options.file));
    const std::int64_t accountId = importInto(installation, account, options, password, imported);
    const auto sets = static_cast<std::int64_t>(imported.sets.size());
    std::int64_t goals = 0;
    for (const auto &set : imported.sets)
        goals += static_cast<std::int64_t>(set.goals.size());
    if (isJson)
        printJson({{"account", std::to_string(accountId)}, {"sets", sets}, {"goals", goals}});
    else
        std::cout << "The account " << accountId << " got " << counted(sets, "set") << " with "
                  << counted(goals, "goal") << "." << std::endl;
    return 0;
}

} // namespace

Command addImport(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "import",
        "Add the sets of an export to an account and name its areas as there; all of it or nothing");
    const auto options = std::make_shared<ImportOptions>();
    command->add_option("FILE", options->file, "What export wrote as json")->required();
    CLI::Option *const isNew =
        command->add_flag("--create", options->isNew, "Make the account, for the login given");
    command->add_option("--name", options->name, "The name of a new account, instead of that in the export")
        ->needs(isNew);
    return {command, [options, account = addAccountOptions(*command), password = addPasswordOptions(*command),
                      installation = addInstallationOptions(*command), isJson = addJsonOption(*command)] {
                return importFile(*installation, *account, *options, *password, *isJson);
            }};
}

} // namespace tarvex::app
