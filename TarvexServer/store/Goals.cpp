#include "Goals.h"

#include "Statements.h"

namespace tarvex::store {

namespace {

const std::string selectGoals =
    "SELECT goal.goal_id, goal.set_id, goal.area_id, goal.name, goal.priority, goal.checked FROM goal"
    " JOIN goal_set ON goal_set.account_id = goal.account_id AND goal_set.set_id = goal.set_id"
    " WHERE goal.account_id = :account AND goal.deleted_at IS NULL AND goal_set.deleted_at IS NULL";

/// What a prepared statement reads a goal into or takes it from, row by row.
struct GoalRow
{
    Goal goal;
    int isChecked = 0; // the engine knows no truth values
};

/// selectGoals with a condition and an order added, prepared once; the ids are its parameters and may change
/// from one run to the next.
class GoalQuery
{
public:
    template<class... Ids>
    GoalQuery(Connection &connection, const std::string &condition, const Ids &...ids)
        : m_rows((((connection.prepare << selectGoals + condition), ..., soci::use(ids)),
                  soci::into(m_row.goal.id), soci::into(m_row.goal.setId), soci::into(m_row.goal.areaId),
                  soci::into(m_row.goal.name), soci::into(m_row.goal.priority), soci::into(m_row.isChecked)))
    {
    }

    GoalQuery(const GoalQuery &) = delete;
    GoalQuery &operator=(const GoalQuery &) = delete;

    void addTo(std::vector<Goal> &goals)
    {
        m_rows.execute();
        while (m_rows.fetch()) {
            m_row.goal.isChecked = m_row.isChecked != 0;
            goals.push_back(m_row.goal);
        }
    }

private:
    GoalRow m_row;
    soci::statement m_rows;
};

template<class... Ids>
std::vector<Goal> goalsWhere(Connection &connection, const std::string &condition, const Ids &...ids)
{
    std::vector<Goal> found;
    GoalQuery(connection, condition, ids...).addTo(found);
    return found;
}

} // namespace

std::vector<Goal> goalsOfArea(Connection &connection, std::int64_t accountId, std::int64_t setId,
                              std::int64_t areaId)
{
    return goalsWhere(connection, " AND goal.set_id = :set AND goal.area_id = :area ORDER BY goal.goal_id",
                      accountId, setId, areaId);
}

std::vector<Goal> goalsOfSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    return goalsWhere(connection, " AND goal.set_id = :set ORDER BY goal.area_id, goal.goal_id", accountId,
                      setId);
}

std::optional<Goal> findGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId)
{
    const std::vector<Goal> found = findGoals(connection, accountId, {goalId});
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<Goal> findGoals(Connection &connection, std::int64_t accountId,
                            const std::vector<std::int64_t> &goalIds)
{
    Goal wanted;
    GoalQuery query(connection, " AND goal.goal_id = :goal", accountId, wanted.id);
    std::vector<Goal> found;
    for (const std::int64_t goalId : goalIds) {
        wanted.id = goalId;
        query.addTo(found);
    }
    return found;
}

std::vector<GoalCount> goalCounts(Connection &connection, std::int64_t accountId)
{
    GoalCount row;
    soci::statement rows = (connection.prepare << "SELECT set_id, area_id, COUNT(*), SUM(checked) FROM goal"
                                                  " WHERE account_id = :account AND deleted_at IS NULL"
                                                  " GROUP BY set_id, area_id ORDER BY set_id, area_id",
                            soci::use(accountId), soci::into(row.setId), soci::into(row.areaId),
                            soci::into(row.count), soci::into(row.checked));
    std::vector<GoalCount> found;
    rows.execute();
    while (rows.fetch())
        found.push_back(row);
    return found;
}

void createGoals(Connection &connection, std::int64_t accountId, const std::vector<Goal> &goals)
{
    if (goals.empty())
        return;
    std::int64_t id = takeIds(connection, accountId, Counter::Goal, static_cast<std::int64_t>(goals.size()));
    GoalRow row;
    soci::statement insert =
        (connection.prepare
             << "INSERT INTO goal (account_id, goal_id, set_id, area_id, name, priority, checked)"
                " VALUES (:account, :goal, :set, :area, :name, :priority, :checked)",
         soci::use(accountId), soci::use(id), soci::use(row.goal.setId), soci::use(row.goal.areaId),
         soci::use(row.goal.name), soci::use(row.goal.priority), soci::use(row.isChecked));
    for (const Goal &goal : goals) {
        row.goal = goal;
        row.isChecked = goal.isChecked ? 1 : 0;
        insert.execute(true);
        ++id;
    }
}

void deleteGoals(Connection &connection, std::int64_t accountId, const std::vector<std::int64_t> &goalIds,
                 std::int64_t now)
{
    Goal deleted;
    soci::statement update = (connection.prepare << "UPDATE goal SET deleted_at = :now"
                                                    " WHERE account_id = :account AND goal_id = :goal"
                                                    " AND deleted_at IS NULL",
                              soci::use(now), soci::use(accountId), soci::use(deleted.id));
    for (const std::int64_t goalId : goalIds) {
        deleted.id = goalId;
        update.execute(true);
    }
}

void checkGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId)
{
    connection << "UPDATE goal SET checked = 1 WHERE account_id = :account AND goal_id = :goal",
        soci::use(accountId), soci::use(goalId);
}

} // namespace tarvex::store
