#include "Goals.h"

#include "IdCounters.h"
#include "Statements.h"

namespace tarvex::store {

namespace {

const std::string selectGoals =
    "SELECT goal.goal_id, goal.set_id, goal.area_id, goal.name, goal.priority, goal.checked FROM goal"
    " JOIN goal_set ON goal_set.account_id = goal.account_id AND goal_set.set_id = goal.set_id"
    " WHERE goal.account_id = :account AND goal.deleted_at IS NULL AND goal_set.deleted_at IS NULL";

/// The variables that a prepared statement reads a goal into or takes it from, row by row.
struct BoundGoal
{
    long long id = 0;
    long long setId = 0;
    long long areaId = 0;
    std::string name;
    int priority = 0;
    int isChecked = 0;

    Goal goal() const
    {
        return Goal{.id = id,
                    .setId = setId,
                    .areaId = areaId,
                    .name = name,
                    .priority = priority,
                    .isChecked = isChecked != 0};
    }
};

/// selectGoals with a condition and an order added, prepared once; the ids are its parameters and may change
/// from one run to the next.
class GoalQuery
{
public:
    template<class... Ids>
    GoalQuery(Connection &connection, const std::string &condition, const Ids &...ids)
        : m_rows(connection.session())
    {
        (m_rows.exchange(soci::use(ids)), ...);
        m_rows.exchange(soci::into(m_row.id));
        m_rows.exchange(soci::into(m_row.setId));
        m_rows.exchange(soci::into(m_row.areaId));
        m_rows.exchange(soci::into(m_row.name));
        m_rows.exchange(soci::into(m_row.priority));
        m_rows.exchange(soci::into(m_row.isChecked));
        m_rows.alloc();
        m_rows.prepare(selectGoals + condition);
        m_rows.define_and_bind();
    }

    GoalQuery(const GoalQuery &) = delete;
    GoalQuery &operator=(const GoalQuery &) = delete;

    void addTo(std::vector<Goal> &goals)
    {
        m_rows.execute();
        while (m_rows.fetch())
            goals.push_back(m_row.goal());
    }

private:
    BoundGoal m_row;
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
    const long long account = accountId;
    const long long set = setId;
    const long long area = areaId;
    return goalsWhere(connection, " AND goal.set_id = :set AND goal.area_id = :area ORDER BY goal.goal_id",
                      account, set, area);
}

std::vector<Goal> goalsOfSet(Connection &connection, std::int64_t accountId, std::int64_t setId)
{
    const long long account = accountId;
    const long long set = setId;
    return goalsWhere(connection, " AND goal.set_id = :set ORDER BY goal.area_id, goal.goal_id", account,
                      set);
}

std::optional<Goal> findGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId)
{
    const std::vector<Goal> found = findGoals(connection, accountId, {goalId});
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<Goal> findGoals(Connection &connection, std::int64_t accountId,
                            const std::vector<std::int64_t> &goalIds)
{
    const long long account = accountId;
    BoundGoal wanted;
    GoalQuery query(connection, " AND goal.goal_id = :goal", account, wanted.id);
    std::vector<Goal> found;
    for (const std::int64_t goalId : goalIds) {
        wanted.id = goalId;
        query.addTo(found);
    }
    return found;
}

std::vector<GoalCount> goalCounts(Connection &connection, std::int64_t accountId)
{
    const long long account = accountId;
    long long setId = 0;
    long long areaId = 0;
    long long count = 0;
    long long checked = 0;
    soci::statement rows =
        (connection.session().prepare << "SELECT set_id, area_id, COUNT(*), SUM(checked) FROM goal"
                                         " WHERE account_id = :account AND deleted_at IS NULL"
                                         " GROUP BY set_id, area_id ORDER BY set_id, area_id",
         soci::use(account), soci::into(setId), soci::into(areaId), soci::into(count), soci::into(checked));
    std::vector<GoalCount> found;
    rows.execute();
    while (rows.fetch())
        found.push_back(GoalCount{.setId = setId, .areaId = areaId, .count = count, .checked = checked});
    return found;
}

void createGoals(Connection &connection, std::int64_t accountId, const std::vector<Goal> &goals)
{
    if (goals.empty())
        return;
    const long long account = accountId;
    const auto count = static_cast<std::int64_t>(goals.size());
    BoundGoal row;
    row.id = takeIds(connection.session(), accountId, Counter::Goal, count);
    soci::statement insert =
        (connection.session().prepare
             << "INSERT INTO goal (account_id, goal_id, set_id, area_id, name, priority, checked)"
                " VALUES (:account, :goal, :set, :area, :name, :priority, :checked)",
         soci::use(account), soci::use(row.id), soci::use(row.setId), soci::use(row.areaId),
         soci::use(row.name), soci::use(row.priority), soci::use(row.isChecked));
    for (const Goal &goal : goals) {
        row.setId = goal.setId;
        row.areaId = goal.areaId;
        row.name = goal.name;
        row.priority = goal.priority;
        row.isChecked = goal.isChecked ? 1 : 0;
        insert.execute(true);
        ++row.id;
    }
}

std::size_t deleteGoals(Connection &connection, std::int64_t accountId,
                        const std::vector<std::int64_t> &goalIds, std::int64_t now)
{
    const long long account = accountId;
    const long long time = now;
    BoundGoal row;
    soci::statement update =
        (connection.session().prepare << "UPDATE goal SET deleted_at = :now WHERE account_id = :account"
                                         " AND goal_id = :goal AND deleted_at IS NULL",
         soci::use(time), soci::use(account), soci::use(row.id));
    std::size_t deleted = 0;
    for (const std::int64_t goalId : goalIds) {
        row.id = goalId;
        deleted += changesRow(update) ? 1U : 0U;
    }
    return deleted;
}

void checkGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId)
{
    const long long account = accountId;
    const long long goal = goalId;
    connection.session() << "UPDATE goal SET checked = 1 WHERE account_id = :account AND goal_id = :goal",
        soci::use(account), soci::use(goal);
}

} // namespace tarvex::store
