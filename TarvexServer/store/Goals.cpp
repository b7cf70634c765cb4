#include "Goals.h"

#include "Quotas.h"

#include <numeric>

namespace tarvex::store {

namespace {

// Statements are known by their place: these stand for ever.
const std::string selectGoals = "SELECT goal_id, set_id, area_id, name, priority, checked FROM goal"
                                " WHERE account_id = $1 AND deleted_at IS NULL";
const std::string selectGoalsOfArea = selectGoals + " AND set_id = $2 AND area_id = $3 ORDER BY goal_id";
const std::string selectGoalsOfSet = selectGoals + " AND set_id = $2 ORDER BY area_id, goal_id";
const std::string selectUndoneGoal = selectGoals + " AND set_id = $2 AND checked = 0 LIMIT 1 OFFSET $3";
const std::string selectGoal = selectGoals + " AND goal_id = $2";

Goal goalOf(const Rows &row)
{
    return {.id = row.number(0),
            .setId = row.number(1),
            .areaId = row.number(2),
            .name = std::string(row.text(3)),
            .priority = static_cast<std::int32_t>(row.number(4)),
            .isChecked = row.number(5) != 0};
}

std::vector<Goal> goalsOf(Rows rows)
{
    std::vector<Goal> found;
    while (rows.next())
        found.push_back(goalOf(rows));
    return found;
}

std::optional<Goal> goalOrNone(Rows rows)
{
    return rows.next() ? std::optional(goalOf(rows)) : std::nullopt;
}

} // namespace

std::vector<Goal> goalsOfArea(Connection &connection, std::int64_t accountId, std::int64_t setId,
                              std::int64_t areaId)
{
    return goalsOf(connection.rows(selectGoalsOfArea.c_str(), accountId, setId, areaId));
}

std::vector<Goal> goalsOfSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    return goalsOf(connection.rows(selectGoalsOfSet.c_str(), accountId, setId));
}

std::optional<Goal> findGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId)
{
    return goalOrNone(connection.rows(selectGoal.c_str(), accountId, goalId));
}

std::int64_t countUndone(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    Rows undone = connection.rows("SELECT COUNT(*) FROM goal WHERE account_id = $1 AND set_id = $2"
                                  " AND deleted_at IS NULL AND checked = 0",
                                  accountId, setId);
    return undone.next() ? undone.number(0) : 0;
}

std::optional<Goal> undoneGoal(Connection &connection, std::int64_t accountId, std::int64_t setId,
                               std::int64_t index)
{
    return goalOrNone(connection.rows(selectUndoneGoal.c_str(), accountId, setId, index));
}

std::vector<GoalCount> goalCounts(Connection &connection, std::int64_t accountId)
{
    std::vector<GoalCount> found;
    Rows rows = connection.rows("SELECT set_id, area_id, COUNT(*), SUM(checked) FROM goal"
                                " WHERE account_id = $1 AND deleted_at IS NULL"
                                " GROUP BY set_id, area_id ORDER BY set_id, area_id",
                                accountId);
    while (rows.next())
        found.push_back({.setId = rows.number(0),
                         .areaId = rows.number(1),
                         .count = rows.number(2),
                         .checked = rows.number(3)});
    return found;
}

void createGoals(Connection &connection, std::int64_t accountId, const std::vector<Goal> &goals)
{
    if (goals.empty())
        return;
    const auto bytes =
        std::accumulate(goals.begin(), goals.end(), std::int64_t(0), [](auto sum, const Goal &goal) {
            return sum + static_cast<std::int64_t>(goal.name.size());
        });
    std::int64_t id = takeGoalIds(connection, accountId, static_cast<std::int64_t>(goals.size()), bytes);
    for (const Goal &goal : goals)
        connection.change("INSERT INTO goal (account_id, goal_id, set_id, area_id, name, priority, checked)"
                          " VALUES ($1, $2, $3, $4, $5, $6, $7)",
                          accountId, id++, goal.setId, goal.areaId, goal.name, goal.priority,
                          goal.isChecked ? 1 : 0);
}

void deleteGoals(Connection &connection, std::int64_t accountId, const std::vector<std::int64_t> &goalIds,
                 std::int64_t now)
{
    std::int64_t deleted = 0;
    for (const std::int64_t goalId : goalIds)
        deleted += connection.change("UPDATE goal SET deleted_at = $1"
                                     " WHERE account_id = $2 AND goal_id = $3 AND deleted_at IS NULL",
                                     now, accountId, goalId);
    countDeleted(connection, accountId, deleted);
}

void checkGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId)
{
    connection.change("UPDATE goal SET checked = 1 WHERE account_id = $1 AND goal_id = $2", accountId,
                      goalId);
}

} // namespace tarvex::store
