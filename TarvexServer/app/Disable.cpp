#include "AccountOptions.h"
#include "Administration.h"
#include "Commands.h"
#include "Output.h"

#include <iostream>

namespace tarvex::app {

namespace {

int setDisabled(const InstallationOptions &installation, const AccountOptions &options, bool isDisabled,
                bool isJson)
{
    store::Database database = installation.existing();
    const std::int64_t accountId = options.find(database, installation);
    requests::setDisabled(database, accountId, isDisabled);
    if (isJson)
        printJson({{"account", std::to_string(accountId)}, {"disabled", isDisabled}});
    else
        std::cout << "The account " << accountId << " is " << (isDisabled ? "disabled" : "enabled") << "."
                  << std::endl;
    return 0;
}

Command addSwitch(CLI::App &program, const char *name, const char *description, bool isDisabled)
{
    CLI::App *const command = program.add_subcommand(name, description);
    return {command, [isDisabled, options = addAccountOptions(*command),
                      installation = addInstallationOptions(*command), isJson = addJsonOption(*command)] {
                return setDisabled(*installation, *options, isDisabled, *isJson);
            }};
}

} // namespace

Command addDisable(CLI::App &program)
{
    return addSwitch(program, "disable",
                     "Let nobody sign in to an account, as if the password were wrong; all it holds stays",
                     /*isDisabled=*/true);
}

Command addEnable(CLI::App &program)
{
    return addSwitch(program, "enable", "Let people sign in to an account again", /*isDisabled=*/false);
}

} // namespace tarvex::app
