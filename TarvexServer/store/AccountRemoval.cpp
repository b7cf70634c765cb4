#include "AccountRemoval.h"

namespace tarvex::store {

bool freeLogins(Connection &connection, std::int64_t accountId)
{
    connection.change("DELETE FROM login WHERE account_id = $1", accountId);
    return connection.change("UPDATE account SET version = version + 1 WHERE account_id = $1", accountId) > 0;
}

std::int64_t removeSome(Connection &connection, std::int64_t accountId, std::int64_t most)
{
    const std::int64_t goals = connection.change("DELETE FROM goal WHERE account_id = $1 AND goal_id IN"
                                                 " (SELECT goal_id FROM goal WHERE account_id = $1 LIMIT $2)",
                                                 accountId, most);
    return goals + connection.change("DELETE FROM set_progress WHERE account_id = $1 AND (set_id, day) IN"
                                     " (SELECT set_id, day FROM set_progress WHERE account_id = $1 LIMIT $2)",
                                     accountId, most - goals);
}

void removeAccount(Connection &connection, std::int64_t accountId)
{
    connection.change("DELETE FROM goal WHERE account_id = $1", accountId);
    connection.change("DELETE FROM set_progress WHERE account_id = $1", accountId);
    connection.change("DELETE FROM area_progress WHERE account_id = $1", accountId);
    connection.change("DELETE FROM goal_set WHERE account_id = $1", accountId);
    connection.change("DELETE FROM area WHERE account_id = $1", accountId);
    connection.change("DELETE FROM login WHERE account_id = $1", accountId);
    connection.change("DELETE FROM web_session WHERE account_id = $1", accountId);
    const std::int64_t removed = connection.change("DELETE FROM account WHERE account_id = $1", accountId);
    connection.change("UPDATE account_count SET accounts = accounts - $1", removed);
}

} // namespace tarvex::store
