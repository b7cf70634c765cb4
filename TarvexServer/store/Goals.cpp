#include "Goals.h"

#include "Progress.h"
#include "Quotas.h"

#include <algorithm>
#include <array>

namespace tarvex::store {

namespace {

// Statements are known by their place: these stand for ever.
const std::string selectGoals = "SELECT goal_id, set_id, area_id, name, priority, checked FROM goal"
                                " WHERE account_id = $1 AND deleted_at IS NULL";
const std::string selectGoalsOfArea = selectGoals + " AND set_id = $2 AND area_id = $3 ORDER BY goal_id";
const std::string selectGoalsOfSet = selectGoals + " AND set_id = $2 ORDER BY area_id, goal_id";
const std::string selectUndoneGoal = selectGoals + " AND set_id = $2 AND checked = 0 LIMIT 1 OFFSET $3";
const std::string selectGoal = selectGoals + " AND goal_id = $2";

constexpr std::size_t mostInserted = 16; // at a time

/// How so many goals are inserted: the account's id first, then the values of each.
const std::string &insertOf(std::size_t count)
{
    static const auto all = [] {
        std::array<std::string, mostInserted> made;
        std::string sql =
            "INSERT INTO goal (account_id, goal_id, set_id, area_id, name, priority, checked) VALUES ";
        int parameter = 1;
        for (std::string &insert : made) {
            sql += parameter > 1 ? ", ($1" : "($1";
            for (int i = 0; i < 6; ++i)
                sql += ", $" + std::to_string(++parameter);
            insert = sql += ")";
        }
        return made;
    }();
    return all.at(count - 1);
}

std::optional<Goal> goalOrNone(Rows rows)
{
    GoalRows found(std::move(rows));
    const Goal *const goal = found.next();
    return goal != nullptr ? std::optional(*goal) : std::nullopt;
}

void noteProgress(Connection &connection, std::int64_t accountId, const std::set<std::int64_t> &setIds,
                  std::int64_t now)
{
    for (const std::int64_t setId : setIds)
        noteSetProgress(connection, accountId, setId, now);
}

} // namespace

const Goal *GoalRows::next()
{
    if (!m_rows.next())
        return nullptr;
    m_goal.id = m_rows.number(0);
    m_goal.setId = m_rows.number(1);
    m_goal.areaId = m_rows.number(2);
    m_goal.name = m_rows.text(3);
    m_goal.priority = static_cast<std::int32_t>(m_rows.number(4));
    m_goal.isChecked = m_rows.number(5) != 0;
    return &m_goal;
}

GoalRows goalsOfArea(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t areaId)
{
    return GoalRows(connection.rows(selectGoalsOfArea.c_str(), accountId, setId, areaId));
}

GoalRows goalsOfSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    return GoalRows(connection.rows(selectGoalsOfSet.c_str(), accountId, setId));
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

void createGoals(Connection &connection, std::int64_t accountId, const std::vector<Goal> &goals,
                 std::int64_t now)
{
    if (goals.empty())
        return;
    std::int64_t bytes = 0;
    std::set<std::int64_t> setIds;
    for (const Goal &goal : goals) {
        bytes += static_cast<std::int64_t>(goal.name.size());
        setIds.insert(goal.setId);
    }
    noteProgress(connection, accountId, setIds, now);
    std::int64_t id = takeGoalIds(connection, accountId, static_cast<std::int64_t>(goals.size()), bytes);
    for (auto next = goals.begin(); next != goals.end();) {
        const auto count = std::min<std::size_t>(mostInserted, static_cast<std::size_t>(goals.end() - next));
        std::vector<std::string> values = {std::to_string(accountId)};
        for (const auto end = next + static_cast<std::ptrdiff_t>(count); next != end; ++next)
            values.insert(values.end(),
                          {std::to_string(id++), std::to_string(next->setId), std::to_string(next->areaId),
                           next->name, std::to_string(next->priority), next->isChecked ? "1" : "0"});
        connection.runWith(insertOf(count).c_str(), values);
    }
}

std::vector<PlacedGoal> placedGoals(Connection &connection, std::int64_t accountId,
                                    std::vector<std::int64_t> ids)
{
    std::vector<PlacedGoal> found;
    if (ids.empty())
        return found;
    std::sort(ids.begin(), ids.end());
    // All at once, since to ask for each would take a way to and fro across a network.
    Rows rows = connection.rows("SELECT goal_id, set_id, area_id FROM goal WHERE account_id = $1"
                                " AND goal_id BETWEEN $2 AND $3 AND deleted_at IS NULL ORDER BY goal_id",
                                accountId, ids.front(), ids.back());
    while (rows.next())
        if (std::binary_search(ids.begin(), ids.end(), rows.number(0)))
            found.push_back({.id = rows.number(0), .setId = rows.number(1), .areaId = rows.number(2)});
    return found;
}

void deleteGoals(Connection &connection, std::int64_t accountId, const std::vector<PlacedGoal> &goals,
                 std::int64_t now)
{
    std::set<std::int64_t> changedSets;
    for (const PlacedGoal &goal : goals)
        changedSets.insert(goal.setId);
    noteProgress(connection, accountId, changedSets, now);
    for (auto first = goals.begin(); first != goals.end();) {
        auto last = first; // of ids in a row: goals that were saved together
        while (last + 1 != goals.end() && (last + 1)->id == last->id + 1)
            ++last;
        connection.run("UPDATE goal SET deleted_at = $1 WHERE account_id = $2 AND goal_id BETWEEN $3 AND $4",
                       now, accountId, first->id, last->id);
        first = last + 1;
    }
    countDeleted(connection, accountId, static_cast<std::int64_t>(goals.size()));
}

void checkGoal(Connection &connection, std::int64_t accountId, const Goal &goal, std::int64_t now)
{
    noteSetProgress(connection, accountId, goal.setId, now);
    connection.run("UPDATE goal SET checked = 1 WHERE account_id = $1 AND goal_id = $2", accountId, goal.id);
}

} // namespace tarvex::store
