#include "AccountList.h"

#include <string>

namespace tarvex::store {

namespace {

// Statements are known by their place: these stand for ever.
const std::string selectOverviews =
    "SELECT account_id, created_at, seen_on, disabled, COALESCE(closed_at, 0),"
    " (SELECT COUNT(*) FROM goal_set WHERE goal_set.account_id = account.account_id AND deleted_at IS NULL),"
    " (SELECT COUNT(*) FROM goal WHERE goal.account_id = account.account_id AND deleted_at IS NULL),"
    " (SELECT COALESCE(SUM(OCTET_LENGTH(goal.name)), 0) FROM goal"
    " WHERE goal.account_id = account.account_id AND deleted_at IS NULL),"
    " (SELECT COUNT(*) FROM goal WHERE goal.account_id = account.account_id AND deleted_at IS NOT NULL)"
    " FROM account";
const std::string selectOverview = selectOverviews + " WHERE account_id = $1";
const std::string selectOverviewsBehind =
    selectOverviews + " WHERE account_id > $1 ORDER BY account_id LIMIT $2";

AccountOverview overviewOf(const Rows &row)
{
    return {.accountId = row.number(0),
            .createdAt = row.number(1),
            .seenOn = row.number(2),
            .isDisabled = row.number(3) != 0,
            .closedAt = row.number(4),
            .sets = row.number(5),
            .goals = row.number(6),
            .goalBytes = row.number(7),
            .deletedGoals = row.number(8)};
}

} // namespace

std::optional<AccountOverview> findOverview(Connection &connection, std::int64_t accountId)
{
    Rows found = connection.rows(selectOverview.c_str(), accountId);
    return found.next() ? std::optional(overviewOf(found)) : std::nullopt;
}

std::vector<AccountOverview> overviews(Connection &connection, std::int64_t after, std::int64_t most)
{
    std::vector<AccountOverview> found;
    Rows rows = connection.rows(selectOverviewsBehind.c_str(), after, most);
    while (rows.next())
        found.push_back(overviewOf(rows));
    return found;
}

} // namespace tarvex::store
