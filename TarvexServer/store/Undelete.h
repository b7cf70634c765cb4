#pragma once

#include "Connection.h"
#include "Goals.h"
#include "Sets.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tarvex::store {

struct DeletedSet
{
    Set set;
    std::int64_t deletedAt = 0; ///< seconds since 1970
};

struct DeletedGoal
{
    Goal goal;
    std::int64_t deletedAt = 0; ///< seconds since 1970
};

/// What an account deleted and what was not purged since, in the order of the ids.
std::vector<DeletedSet> deletedSets(Connection &connection, std::int64_t accountId);
std::vector<DeletedGoal> deletedGoals(Connection &connection, std::int64_t accountId);

// Progress is noted for `now`, in seconds since 1970.

/// Brings a deleted set back, with the goals that were deleted with it. Returns how many
/// these are; nothing if there is no such set. Throws QuotaExceeded.
std::optional<std::int64_t> undeleteSet(Connection &connection, std::int64_t accountId, std::int64_t setId,
                                        std::int64_t now);

/// Brings a deleted goal back into its set. Tells whether there was such a goal whose set is there. Throws
/// QuotaExceeded.
bool undeleteGoal(Connection &connection, std::int64_t accountId, std::int64_t goalId, std::int64_t now);

} // namespace tarvex::store
