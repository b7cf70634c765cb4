#include "Undelete.h"

#include "Progress.h"
#include "Quotas.h"

namespace tarvex::store {

std::vector<DeletedSet> deletedSets(Connection &connection, std::int64_t accountId)
{
    std::vector<DeletedSet> found;
    Rows rows = connection.rows("SELECT set_id, name, deleted_at FROM goal_set"
                                " WHERE account_id = $1 AND deleted_at IS NOT NULL ORDER BY set_id",
                                accountId);
    while (rows.next())
        found.push_back(
            {.set = {.id = rows.number(0), .name = std::string(rows.text(1))}, .deletedAt = rows.number(2)});
    return found;
}

std::vector<DeletedGoal> deletedGoals(Connection &connection, std::int64_t accountId)
{
    std::vector<DeletedGoal> found;
    Rows rows =
        connection.rows("SELECT goal_id, set_id, area_id, name, priority, checked, deleted_at FROM goal"
                        " WHERE account_id = $1 AND deleted_at IS NOT NULL ORDER BY goal_id",
                        accountId);
    while (rows.next())
        found.push_back({.goal = {.id = rows.number(0),
                                  .setId = rows.number(1),
                                  .areaId = rows.number(2),
                                  .name = std::string(rows.text(3)),
                                  .priority = static_cast<std::int32_t>(rows.number(4)),
                                  .isChecked = rows.number(5) != 0},
                         .deletedAt = rows.number(6)});
    return found;
}

std::optional<std::int64_t> undeleteSet(Connection &connection, std::int64_t accountId, std::int64_t setId,
                                        std::int64_t now)
{
    const auto deletedAt =
        connection.firstNumber("SELECT deleted_at FROM goal_set"
                               " WHERE account_id = $1 AND set_id = $2 AND deleted_at IS NOT NULL",
                               accountId, setId);
    if (!deletedAt)
        return {};
    requireSetRoom(connection, accountId);
    noteSetProgress(connection, accountId, setId, now);
    connection.change("UPDATE goal_set SET deleted_at = NULL WHERE account_id = $1 AND set_id = $2",
                      accountId, setId);
    Rows goals = connection.rows("SELECT COUNT(*), COALESCE(SUM(OCTET_LENGTH(name)), 0) FROM goal"
                                 " WHERE account_id = $1 AND set_id = $2 AND deleted_at = $3",
                                 accountId, setId, *deletedAt);
    goals.next();
    countUndeleted(connection, accountId, goals.number(0), goals.number(1));
    return connection.change("UPDATE goal SET deleted_at = NULL"
                             " WHERE account_id = $1 AND set_id = $2 AND deleted_at = $3",
                             accountId, setId, *deletedAt);
}

bool undeleteGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId, std::int64_t now)
{
    Rows goal = connection.rows("SELECT goal.set_id, OCTET_LENGTH(goal.name) FROM goal"
                                " JOIN goal_set ON goal_set.account_id = goal.account_id"
                                " AND goal_set.set_id = goal.set_id"
                                " WHERE goal.account_id = $1 AND goal.goal_id = $2"
                                " AND goal.deleted_at IS NOT NULL AND goal_set.deleted_at IS NULL",
                                accountId, goalId);
    if (!goal.next())
        return false;
    noteSetProgress(connection, accountId, goal.number(0), now);
    countUndeleted(connection, accountId, /*count=*/1, goal.number(1));
    connection.change("UPDATE goal SET deleted_at = NULL WHERE account_id = $1 AND goal_id = $2", accountId,
                      goalId);
    return true;
}

} // namespace tarvex::store
