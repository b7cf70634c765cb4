#include "AccountOptions.h"
#include "Administration.h"
#include "Commands.h"
#include "Output.h"
#include "Times.h"

#include <iomanip>
#include <iostream>

namespace tarvex::app {

namespace {

std::string lastSeen(const store::AccountOverview &account)
{
    constexpr std::int64_t secondsPerDay = 24LL * 60 * 60;
    return account.seenOn == 0 ? "never" : wire::utcDay(account.seenOn * secondsPerDay);
}

boost::json::object described(const store::AccountOverview &account)
{
    // The id as a text: it has more digits than a number of most scripts.
    return {{"account", std::to_string(account.accountId)},
            {"created", wire::utcTime(account.createdAt)},
            {"lastSeen", account.seenOn == 0 ? boost::json::value() : boost::json::value(lastSeen(account))},
            {"disabled", account.isDisabled},
            {"closed", account.closedAt == 0 ? boost::json::value()
                                             : boost::json::value(wire::utcTime(account.closedAt))},
            {"sets", account.sets},
            {"goals", account.goals},
            {"goalBytes", account.goalBytes},
            {"deletedGoals", account.deletedGoals}};
}

template<class... Columns>
void printRow(const Columns &...columns)
{
    constexpr int idWidth = 19;
    constexpr int width = 12;
    int next = idWidth;
    ((std::cout << std::setw(std::exchange(next, width)) << columns), ...);
}

void printHead()
{
    printRow("account", "created", "last seen", "sets", "goals", "bytes", "deleted");
    std::cout << "\n";
}

void printRow(const store::AccountOverview &account)
{
    printRow(account.accountId, wire::utcDay(account.createdAt), lastSeen(account), account.sets,
             account.goals, account.goalBytes, account.deletedGoals);
    if (account.isDisabled)
        std::cout << "  disabled";
    if (account.closedAt != 0)
        std::cout << "  closed " << wire::utcDay(account.closedAt);
    std::cout << "\n";
}

int listAsJson(store::Database &database)
{
    boost::json::array all;
    requests::eachOverview(database,
                           [&](const store::AccountOverview &account) { all.push_back(described(account)); });
    printJson({{"accounts", std::move(all)}});
    return 0;
}

int printTable(store::Database &database)
{
    std::int64_t count = 0;
    printHead();
    requests::eachOverview(database, [&](const store::AccountOverview &account) {
        ++count;
        printRow(account);
    });
    std::cout << counted(count, "account") << "." << std::endl;
    return 0;
}

int accounts(const InstallationOptions &installation, const AccountOptions &options, bool isJson)
{
    store::Database database = installation.existing();
    if (!options.isGiven())
        return isJson ? listAsJson(database) : printTable(database);
    const store::AccountOverview account =
        requests::overviewOf(database, options.find(database, installation));
    if (isJson) {
        printJson({{"accounts", boost::json::array{described(account)}}});
    } else {
        printHead();
        printRow(account);
    }
    return 0;
}

} // namespace

Command addAccounts(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "accounts", "List the accounts, by their ids: sets, goals and the bytes of these,"
                    " deleted goals, when made and last seen (days in UTC)");
    return {command,
            [installation = addInstallationOptions(*command),
             options = addAccountOptions(*command, /*isRequired=*/false),
             isJson = addJsonOption(*command)] { return accounts(*installation, *options, *isJson); }};
}

} // namespace tarvex::app
