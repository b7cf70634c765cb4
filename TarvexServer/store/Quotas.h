#pragma once

#include "Connection.h"

#include <cstdint>
#include <exception>

namespace tarvex::store {

/// What one account may hold: far more than anybody writes by hand, and little enough to be read in a moment.
/// The functions that make things throw QuotaExceeded beyond it.
struct Quotas
{
    static constexpr std::int64_t sets = 500;
    static constexpr std::int64_t setsWithDeleted = 2'000;
    static constexpr std::int64_t setNameBytes = 4LL * 1024 * 1024; ///< of all of these together
    static constexpr std::int64_t goals = 20'000;
    static constexpr std::int64_t goalBytes = 16LL * 1024 * 1024; ///< of their names
    /// Beyond these the ones that were deleted first are gone before their time.
    static constexpr std::int64_t deletedGoals = 100'000;
    static constexpr std::int64_t deletedBytes =
        32LL * 1024 * 1024; ///< of their names; looked at when the account's goals are counted anew
};

/// The account may not hold so much.
class QuotaExceeded : public std::exception
{
};

/// Throws QuotaExceeded if the account has no room for one more set that is not deleted.
void requireSetRoom(Connection &connection, std::int64_t accountId);

/// Throws QuotaExceeded if the names of the account's sets are too long together.
void requireSetNameRoom(Connection &connection, std::int64_t accountId);

/// Takes an id for a set. Throws TransactionFailed if the account is gone or the wire's 32 bits are used up.
std::int64_t takeSetId(Connection &connection, std::int64_t accountId);

/// Takes so many ids in a row for goals with names of so many bytes, and returns the first. Throws like the
/// above.
std::int64_t takeGoalIds(Connection &connection, std::int64_t accountId, std::int64_t count,
                         std::int64_t bytes);

/// Counts that so many deleted goals with names of so many bytes come back. To be called before they do.
/// Throws QuotaExceeded.
void countUndeleted(Connection &connection, std::int64_t accountId, std::int64_t count, std::int64_t bytes);

/// Counts that so many goals of the account were deleted, and keeps its deleted ones in their bounds.
void countDeleted(Connection &connection, std::int64_t accountId, std::int64_t count);

} // namespace tarvex::store
