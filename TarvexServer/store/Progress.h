#pragma once

#include "Connection.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tarvex::store {

/// A number for each area of the wheel, in its order.
using OfAreas = std::array<std::int32_t, 8>;

/// The day, counted from 1970, in UTC, of a time in seconds since 1970.
constexpr std::int64_t dayOf(std::int64_t seconds)
{
    constexpr std::int64_t secondsPerDay = 24LL * 60 * 60;
    return seconds / secondsPerDay;
}

/// What the areas of a set, or of an account, came to on a day, at its end; so they stayed until the next.
struct DayOfAreas
{
    std::int64_t day = 0;
    OfAreas numbers = {};
};

// Whatever changes the wheel of a set notes it in its own transaction, once for each day. The functions of
// Goals.h, Sets.h, Areas.h and Undelete.h do that; `now` is in seconds since 1970. What a set comes to is the
// share of done goals in each area: in percent, truncated, and 100 where there are none.

/// Notes that a set is about to change: what it came to until now was that of the last day that changed it,
/// and what it comes to from now on is that of today. It is counted on the first change of a day alone.
void noteSetProgress(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now);

/// Notes what a set comes to before it is deleted.
void endSetProgress(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now);

/// Notes the areas' values, as they are now, which all sets of the account have in common.
void noteAreaProgress(Connection &connection, std::int64_t accountId, std::int64_t now);

// Deleted sets do not exist for any of the functions below. What is asked of the time before the first day
// noted has no answer: an account that is older than its history began with what it held when that began.

/// The percents of a set from one day to another, both included: the day that set what it was at the
/// beginning, which may lie before, and each one that changed it since.
std::vector<DayOfAreas> setProgress(Connection &connection, std::int64_t accountId, std::int64_t setId,
                                    std::int64_t firstDay, std::int64_t lastDay);

/// The percents of a set as they were at the end of a day.
std::optional<DayOfAreas> percentsOn(Connection &connection, std::int64_t accountId, std::int64_t setId,
                                     std::int64_t day);

/// The areas' values as they were at the end of a day.
std::optional<DayOfAreas> valuesOn(Connection &connection, std::int64_t accountId, std::int64_t day);

} // namespace tarvex::store
