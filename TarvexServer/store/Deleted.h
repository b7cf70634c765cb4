#pragma once

#include "Connection.h"

#include <cstdint>
#include <optional>

namespace tarvex::store {

/// Moves the clock that decides on purging forward by the seconds that the service ran since the last call,
/// and never beyond `now`; returns what it shows then. The clock of the machine may jump, this one does not:
/// nothing is purged early. Times are in seconds since 1970.
std::int64_t movePurgeClock(Connection &connection, std::int64_t secondsRun, std::int64_t now);

/// The account behind `after`, in the order of their ids, that has deleted anything; nothing if there is
/// none.
std::optional<std::int64_t> nextWithDeleted(Connection &connection, std::int64_t after);

/// Removes for good what the account deleted before a time, but at most so many goals and days of progress,
/// without which sets stay. Returns the number of rows removed.
std::int64_t purgeDeleted(Connection &connection, std::int64_t accountId, std::int64_t before,
                          std::int64_t most);

} // namespace tarvex::store
