#pragma once

#include "Connection.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarvex::store {

/// A named snapshot of the wheel; its name is wire text.
struct Set
{
    std::int64_t id = 0;
    std::string name;
};

/// The account's sets, without deleted ones: the oldest first, then the others from the newest back. The
/// client selects the second after it created one.
std::vector<Set> sets(Connection &connection, std::int64_t accountId);

bool hasSet(Connection &connection, std::int64_t accountId, std::int64_t setId);
/// Whether the account has both, so that goals can hang there.
bool hasPlace(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t areaId);
/// All such pairs of set and area, of the sets whose ids lie between these two.
std::set<std::pair<std::int64_t, std::int64_t>> placesOfSets(Connection &connection, std::int64_t accountId,
                                                             std::int64_t firstSetId, std::int64_t lastSetId);

/// Returns the new set's id. Throws QuotaExceeded. Progress is noted for `now`, in seconds since 1970.
std::int64_t createSet(Connection &connection, std::int64_t accountId, const std::string &name,
                       std::int64_t now);

/// Tells whether the account has such a set. Throws QuotaExceeded.
bool renameSet(Connection &connection, std::int64_t accountId, std::int64_t setId, const std::string &name);

/// Marks the set and its goals deleted. Tells whether the account had such a set. `now` is in seconds since
/// 1970.
bool deleteSet(Connection &connection, std::int64_t accountId, std::int64_t setId, std::int64_t now);

} // namespace tarvex::store
