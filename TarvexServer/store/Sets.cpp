#include "Sets.h"

#include "IdCounters.h"
#include "Statements.h"

#include <algorithm>

namespace tarvex::store {

std::vector<Set> sets(Connection &connection, std::int64_t accountId)
{
    const long long account = accountId;
    long long id = 0;
    std::string name;
    soci::statement rows = (connection.session().prepare
                                << "SELECT set_id, name FROM goal_set"
                                   " WHERE account_id = :account AND deleted_at IS NULL ORDER BY set_id",
                            soci::use(account), soci::into(id), soci::into(name));
    std::vector<Set> found;
    rows.execute();
    while (rows.fetch())
        found.push_back(Set{.id = id, .name = name});
    if (!found.empty())
        std::reverse(found.begin() + 1, found.end());
    return found;
}

bool hasSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    const long long account = accountId;
    const long long set = setId;
    long long found = 0;
    connection.session() << "SELECT set_id FROM goal_set"
                            " WHERE account_id = :account AND set_id = :set AND deleted_at IS NULL",
        soci::use(account), soci::use(set), soci::into(found);
    return connection.session().got_data();
}

std::int64_t createSet(Connection &connection, std::int64_t accountId, const std::string &name)
{
    const long long account = accountId;
    const long long set = takeIds(connection.session(), accountId, Counter::Set, /*count=*/1);
    connection.session() << "INSERT INTO goal_set (account_id, set_id, name) VALUES (:account, :set, :name)",
        soci::use(account), soci::use(set), soci::use(name);
    return set;
}

bool renameSet(Connection &connection, std::int64_t accountId, std::int64_t setId, const std::string &name)
{
    const long long account = accountId;
    const long long set = setId;
    soci::statement update =
        (connection.session().prepare << "UPDATE goal_set SET name = :name WHERE account_id = :account"
                                         " AND set_id = :set AND deleted_at IS NULL",
         soci::use(name), soci::use(account), soci::use(set));
    return changesRow(update);
}

bool deleteSet(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now)
{
    const long long account = accountId;
    const long long set = setId;
    const long long time = now;
    soci::statement update =
        (connection.session().prepare << "UPDATE goal_set SET deleted_at = :now WHERE account_id = :account"
                                         " AND set_id = :set AND deleted_at IS NULL",
         soci::use(time), soci::use(account), soci::use(set));
    return changesRow(update);
}

void purgeDeleted(Connection &connection, std::int64_t accountId, std::int64_t before)
{
    const long long account = accountId;
    const long long time = before;
    connection.session() << "DELETE FROM goal WHERE account_id = :account AND deleted_at < :before",
        soci::use(account), soci::use(time);
    connection.session() << "DELETE FROM goal WHERE account_id = :account AND set_id IN (SELECT set_id"
                            " FROM goal_set WHERE account_id = :same AND deleted_at < :before)",
        soci::use(account), soci::use(account), soci::use(time);
    connection.session() << "DELETE FROM goal_set WHERE account_id = :account AND deleted_at < :before",
        soci::use(account), soci::use(time);
}

} // namespace tarvex::store
