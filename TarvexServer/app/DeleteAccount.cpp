#include "AccountOptions.h"
#include "Administration.h"
#include "Commands.h"
#include "Output.h"
#include "Times.h"

#include <iostream>

namespace tarvex::app {

namespace {

/// Asks whoever runs the command, who may be a script.
void confirm(const store::AccountOverview &account)
{
    std::cerr << "The account " << account.accountId << " of " << wire::utcDay(account.createdAt) << " holds "
              << counted(account.sets, "set") << " and " << counted(account.goals, "goal")
              << ". They cannot be brought back. Type yes to remove it: " << std::flush;
    std::string line;
    std::getline(std::cin, line);
    if (line != "yes")
        throw requests::AccountProblem("Nothing was removed.");
}

int deleteAccount(const InstallationOptions &installation, const AccountOptions &options, bool isConfirmed,
                  bool isJson)
{
    store::Database database = installation.existing();
    const std::int64_t accountId = options.find(database, installation);
    if (!isConfirmed)
        confirm(requests::overviewOf(database, accountId));
    const bool isLogEmpty = requests::removeAccount(database, accountId);
    if (isJson) {
        printJson({{"account", std::to_string(accountId)}, {"logEmptied", isLogEmpty}});
        return 0;
    }
    std::cout << "The account " << accountId << " was removed with all that it held.\n";
    if (!isLogEmpty)
        std::cout
            << "Somebody reads the database for long: what was removed stays in the file beside it until"
               " it is written over.\n";
    std::cout << std::flush;
    return 0;
}

} // namespace

Command addDeleteAccount(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "delete-account", "Remove an account with all that it ever held, for good; its login is free then");
    const auto isConfirmed = std::make_shared<bool>(false);
    command->add_flag("--yes", *isConfirmed, "Do not ask");
    return {command, [isConfirmed, options = addAccountOptions(*command),
                      installation = addInstallationOptions(*command), isJson = addJsonOption(*command)] {
                return deleteAccount(*installation, *options, *isConfirmed, *isJson);
            }};
}

} // namespace tarvex::app
