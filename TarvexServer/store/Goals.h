#pragma once

#include "Connection.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarvex::store {

/// A goal of an area in a set; its name is wire text.
struct Goal
{
    std::int64_t id = 0;
    std::int64_t setId = 0;
    std::int64_t areaId = 0;
    std::string name;
    std::int32_t priority = 0;
    bool isChecked = false;
};

/// The goals that a query finds, each read when it is asked for. The same query is not begun again meanwhile.
class GoalRows
{
public:
    explicit GoalRows(Rows rows) : m_rows(std::move(rows)) {}

    /// The next goal, valid until the one after it is asked for; null behind the last.
    const Goal *next();

private:
    Rows m_rows;
    Goal m_goal;
};

/// How many goals an area has in a set, and how many of them are done.
struct GoalCount
{
    std::int64_t setId = 0;
    std::int64_t areaId = 0;
    std::int64_t count = 0;
    std::int64_t checked = 0;
};

// Deleted goals do not exist for any of the functions below.

/// The goals of one area in a set, oldest first.
GoalRows goalsOfArea(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t areaId);

/// The goals of a whole set, area by area, oldest first.
GoalRows goalsOfSet(Connection &connection, std::int64_t accountId, std::int64_t setId);

/// Counts for all areas of all sets that have goals.
std::vector<GoalCount> goalCounts(Connection &connection, std::int64_t accountId);

std::optional<Goal> findGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId);

/// How many goals of a set are not done.
std::int64_t countUndone(Connection &connection, std::int64_t accountId, std::int64_t setId);

/// One of these, by its place among them; nothing if there are fewer.
std::optional<Goal> undoneGoal(Connection &connection, std::int64_t accountId, std::int64_t setId,
                               std::int64_t index);

// What follows notes the progress of the sets it changes; `now` is in seconds since 1970.

/// Inserts the goals in their order under new ids; those they carry are ignored. Set and area must be there.
/// Throws QuotaExceeded.
void createGoals(Connection &connection, std::int64_t accountId, const std::vector<Goal> &goals,
                 std::int64_t now);

/// A goal with the set and the area that it hangs on.
struct PlacedGoal
{
    std::int64_t id = 0;
    std::int64_t setId = 0;
    std::int64_t areaId = 0;
};

/// Those of these goals that the account has, by ascending id.
std::vector<PlacedGoal> placedGoals(Connection &connection, std::int64_t accountId,
                                    std::vector<std::int64_t> ids);

/// Marks these goals deleted.
void deleteGoals(Connection &connection, std::int64_t accountId, const std::vector<PlacedGoal> &goals,
                 std::int64_t now);

/// Marks the goal done, which it may be already.
void checkGoal(Connection &connection, std::int64_t accountId, const Goal &goal, std::int64_t now);

} // namespace tarvex::store
