#include "Sets.h"

#include "Progress.h"
#include "Quotas.h"

#include <algorithm>

namespace tarvex::store {

std::vector<Set> sets(Connection &connection, std::int64_t accountId)
{
    std::vector<Set> found;
    Rows rows = connection.rows(
        "SELECT set_id, name FROM goal_set WHERE account_id = $1 AND deleted_at IS NULL ORDER BY set_id",
        accountId);
    while (rows.next())
        found.push_back({.id = rows.number(0), .name = std::string(rows.text(1))});
    if (!found.empty())
        std::reverse(found.begin() + 1, found.end());
    return found;
}

bool hasSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    return connection
        .rows("SELECT 1 FROM goal_set WHERE account_id = $1 AND set_id = $2 AND deleted_at IS NULL",
              accountId, setId)
        .next();
}

bool hasPlace(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t areaId)
{
    return connection
        .rows("SELECT 1 FROM goal_set JOIN area ON area.account_id = goal_set.account_id"
              " WHERE goal_set.account_id = $1 AND set_id = $2 AND deleted_at IS NULL AND area_id = $3",
              accountId, setId, areaId)
        .next();
}

std::set<std::pair<std::int64_t, std::int64_t>> placesOfSets(Connection &connection, std::int64_t accountId,
                                                             std::int64_t firstSetId, std::int64_t lastSetId)
{
    std::set<std::pair<std::int64_t, std::int64_t>> places;
    Rows rows =
        connection.rows("SELECT set_id, area_id FROM goal_set"
                        " JOIN area ON area.account_id = goal_set.account_id"
                        " WHERE goal_set.account_id = $1 AND set_id BETWEEN $2 AND $3 AND deleted_at IS NULL",
                        accountId, firstSetId, lastSetId);
    while (rows.next())
        places.emplace(rows.number(0), rows.number(1));
    return places;
}

std::int64_t createSet(Connection &connection, std::int64_t accountId, const std::string &name,
                       std::int64_t now)
{
    const std::int64_t setId = takeSetId(connection, accountId);
    connection.change("INSERT INTO goal_set (account_id, set_id, name) VALUES ($1, $2, $3)", accountId, setId,
                      name);
    requireSetNameRoom(connection, accountId);
    noteSetProgress(connection, accountId, setId, now);
    return setId;
}

bool renameSet(Connection &connection, std::int64_t accountId, std::int64_t setId, const std::string &name)
{
    const std::int64_t renamed =
        connection.change("UPDATE goal_set SET name = $1"
                          " WHERE account_id = $2 AND set_id = $3 AND deleted_at IS NULL",
                          name, accountId, setId);
    requireSetNameRoom(connection, accountId);
    return renamed > 0;
}

bool deleteSet(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now)
{
    endSetProgress(connection, accountId, setId, now);
    if (connection.change("UPDATE goal_set SET deleted_at = $1"
                          " WHERE account_id = $2 AND set_id = $3 AND deleted_at IS NULL",
                          now, accountId, setId) == 0)
        return false;
    // Goals come back with the set that went at their time: what went by itself in this second went before.
    connection.run("UPDATE goal SET deleted_at = deleted_at - 1"
                   " WHERE account_id = $1 AND set_id = $2 AND deleted_at = $3",
                   accountId, setId, now);
    countDeleted(connection, accountId,
                 connection.change("UPDATE goal SET deleted_at = $1"
                                   " WHERE account_id = $2 AND set_id = $3 AND deleted_at IS NULL",
                                   now, accountId, setId));
    return true;
}

} // namespace tarvex::store
