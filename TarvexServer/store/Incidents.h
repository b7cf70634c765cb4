#pragma once

#include "Connection.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvex::store {

// What went wrong lately, so that all processes of an installation know, also after a restart. Times are in
// seconds since 1970.

void addFailure(Connection &connection, std::string_view key, std::int64_t at);

/// How often the key failed after `since` and not after `now`.
std::int64_t failuresOf(Connection &connection, std::string_view key, std::int64_t since, std::int64_t now);

/// Set and area of a save; zeros stand for any.
using SavePlace = std::pair<std::int64_t, std::int64_t>;

/// Remembers that a save of that saver for that place came to nothing. After many places of one saver, it
/// may have been any.
void addRefusedSave(Connection &connection, std::string_view saver, const SavePlace &place,
                    std::int64_t until);

/// The places of all that the saver's saves were refused for and that are still remembered.
std::vector<SavePlace> refusedSavesOf(Connection &connection, std::string_view saver, std::int64_t now);

void forgetRefusedSave(Connection &connection, std::string_view saver, const SavePlace &place);

/// Forgets failures up to a time, or from beyond `now` since a clock was put back, and refused saves whose
/// time is over.
void forgetIncidents(Connection &connection, std::int64_t failuresUntil, std::int64_t now);

} // namespace tarvex::store
