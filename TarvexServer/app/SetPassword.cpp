#include "AccountOptions.h"
#include "Administration.h"
#include "Commands.h"
#include "Output.h"
#include "Password.h"

#include <iostream>

namespace tarvex::app {

namespace {

int setPassword(const InstallationOptions &installation, const AccountOptions &options,
                const std::string &password, bool isJson)
{
    store::Database database = installation.existing();
    const std::int64_t accountId = options.find(database, installation);
    requests::setPassword(database, accountId, password);
    if (isJson)
        printJson({{"account", std::to_string(accountId)}});
    else
        std::cout << "The account " << accountId << " has a new password; the old one counts no more."
                  << std::endl;
    return 0;
}

} // namespace

Command addSetPassword(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand("set-password", "Give an account a new password");
    return {command, [options = addAccountOptions(*command), password = addPasswordOptions(*command),
                      installation = addInstallationOptions(*command), isJson = addJsonOption(*command)] {
                return setPassword(*installation, *options, password->read(), *isJson);
            }};
}

} // namespace tarvex::app
