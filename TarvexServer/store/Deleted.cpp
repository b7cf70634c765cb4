#include "Deleted.h"

#include <algorithm>

namespace tarvex::store {

std::int64_t movePurgeClock(Connection &connection, std::int64_t secondsRun, std::int64_t now)
{
    const auto before = connection.firstNumber("SELECT seconds FROM purge_clock");
    const std::int64_t seconds = std::min(now, before.value_or(now) + secondsRun);
    if (before)
        connection.change("UPDATE purge_clock SET seconds = $1", seconds);
    else
        connection.change("INSERT INTO purge_clock (seconds) VALUES ($1)", seconds);
    return seconds;
}

std::optional<std::int64_t> nextWithDeleted(Connection &connection, std::int64_t after)
{
    const auto ofGoals =
        connection.firstNumber("SELECT account_id FROM goal WHERE account_id > $1 AND deleted_at IS NOT NULL"
                               " ORDER BY account_id LIMIT 1",
                               after);
    const auto ofSets = connection.firstNumber("SELECT account_id FROM goal_set"
                                               " WHERE account_id > $1 AND deleted_at IS NOT NULL"
                                               " ORDER BY account_id LIMIT 1",
                                               after);
    return ofGoals && ofSets ? std::min(ofGoals, ofSets) : ofGoals ? ofGoals : ofSets;
}

std::int64_t purgeDeleted(Connection &connection, std::int64_t accountId, std::int64_t before,
                          std::int64_t most)
{
    std::int64_t removed =
        connection.change("DELETE FROM goal WHERE account_id = $1 AND goal_id IN (SELECT goal_id FROM goal"
                          " WHERE account_id = $1 AND deleted_at < $2 LIMIT $3)",
                          accountId, before, most);
    removed += connection.change("DELETE FROM set_progress WHERE account_id = $1 AND (set_id, day) IN"
                                 " (SELECT gone.set_id, gone.day FROM set_progress AS gone JOIN goal_set"
                                 " ON goal_set.account_id = gone.account_id AND goal_set.set_id = gone.set_id"
                                 " WHERE gone.account_id = $1 AND deleted_at < $2 LIMIT $3)",
                                 accountId, before, most - removed);
    removed +=
        connection.change("DELETE FROM goal_set WHERE account_id = $1 AND deleted_at < $2 AND NOT EXISTS"
                          " (SELECT 1 FROM goal WHERE goal.account_id = $1"
                          " AND goal.set_id = goal_set.set_id) AND NOT EXISTS"
                          " (SELECT 1 FROM set_progress WHERE set_progress.account_id = $1"
                          " AND set_progress.set_id = goal_set.set_id)",
                          accountId, before);
    return removed;
}

} // namespace tarvex::store
