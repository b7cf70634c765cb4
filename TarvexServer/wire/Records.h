#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace tarvex::wire {

/// The set and area that a goal hangs on.
struct GoalPlace
{
    std::int64_t setId = 0;
    std::int64_t areaId = 0;
    bool operator==(const GoalPlace &) const = default;
    bool operator<(const GoalPlace &other) const
    {
        return std::tie(setId, areaId) < std::tie(other.setId, other.areaId);
    }
};

/// One goal of create-some-goals.
struct GoalRecord
{
    std::string name;
    std::int32_t priority = 0;
    bool isChecked = false;
    GoalPlace place;
};

/// One area of set-area-names.
struct AreaNameRecord
{
    std::int64_t areaId = 0;
    std::string name;
};

/// Reads "name:...;priority:N;checked:N;setsId:N;areaId:N;{_end_}" records. A name may hold the end mark
/// itself: a record ends where its grammar is complete, not at the next mark. A broken record is passed over
/// up to the next end mark behind which another one begins, so it costs nothing but itself.
std::vector<GoalRecord> readGoalRecords(std::string_view field);

/// Reads "id:N;name:...;{_end_}" records by the same rules.
std::vector<AreaNameRecord> readAreaNameRecords(std::string_view field);

/// Reads ids that each end in ";"; a piece that is no id is passed over.
std::vector<std::int64_t> readIdList(std::string_view field);

/// Where the goals of a list want to hang, read from the first place found in it, even if the list is broken
/// or was cut off.
std::optional<GoalPlace> goalPlaceHint(std::string_view field);

} // namespace tarvex::wire
