#include "Sets.h"

#include "Statements.h"

#include <algorithm>

namespace tarvex::store {

std::vector<Set> sets(Connection &connection, std::int64_t accountId)
{
    Set set;
    soci::statement rows =
        (connection.prepare << "SELECT set_id, name FROM goal_set"
                               " WHERE account_id = :account AND deleted_at IS NULL ORDER BY set_id",
         soci::use(accountId), soci::into(set.id), soci::into(set.name));
    std::vector<Set> found;
    rows.execute();
    while (rows.fetch())
        found.push_back(set);
    if (!found.empty())
        std::reverse(found.begin() + 1, found.end());
    return found;
}

bool hasSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    std::int64_t found = 0;
    connection << "SELECT set_id FROM goal_set"
                  " WHERE account_id = :account AND set_id = :set AND deleted_at IS NULL",
        soci::use(accountId), soci::use(setId), soci::into(found);
    return connection.got_data();
}

std::int64_t createSet(Connection &connection, std::int64_t accountId, const std::string &name)
{
    const std::int64_t setId = takeIds(connection, accountId, Counter::Set, /*count=*/1);
    connection << "INSERT INTO goal_set (account_id, set_id, name) VALUES (:account, :set, :name)",
        soci::use(accountId), soci::use(setId), soci::use(name);
    return setId;
}

bool renameSet(Connection &connection, std::int64_t accountId, std::int64_t setId, const std::string &name)
{
    return changesRow(connection,
                      "UPDATE goal_set SET name = :name WHERE account_id = :account"
                      " AND set_id = :set AND deleted_at IS NULL",
                      name, accountId, setId);
}

bool deleteSet(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now)
{
    return changesRow(connection,
                      "UPDATE goal_set SET deleted_at = :now WHERE account_id = :account"
                      " AND set_id = :set AND deleted_at IS NULL",
                      now, accountId, setId);
}

void purgeDeleted(Connection &connection, std::int64_t accountId, std::int64_t before)
{
    connection << "DELETE FROM goal WHERE account_id = :account AND deleted_at < :before",
        soci::use(accountId), soci::use(before);
    connection << "DELETE FROM goal WHERE account_id = :account AND set_id IN (SELECT set_id"
                  " FROM goal_set WHERE account_id = :same AND deleted_at < :before)",
        soci::use(accountId), soci::use(accountId), soci::use(before);
    connection << "DELETE FROM goal_set WHERE account_id = :account AND deleted_at < :before",
        soci::use(accountId), soci::use(before);
}

} // namespace tarvex::store
