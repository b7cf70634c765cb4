#pragma once

#include "Connection.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tarvex::store {

/// What an operator may know of an account without looking into it.
struct AccountOverview
{
    std::int64_t accountId = 0;
    std::int64_t createdAt = 0; ///< seconds since 1970
    std::int64_t seenOn = 0;    ///< days since 1970; 0 if its password was never found right
    bool isDisabled = false;
    std::int64_t closedAt = 0; ///< by its owner, in seconds since 1970, or 0
    std::int64_t sets = 0;
    std::int64_t goals = 0;
    std::int64_t goalBytes = 0; ///< of the names of these
    std::int64_t deletedGoals = 0;
};

/// The overview of one account; nothing if there is none with this id.
std::optional<AccountOverview> findOverview(Connection &connection, std::int64_t accountId);

/// So many accounts at most, in the order of their ids from the one behind `after`.
std::vector<AccountOverview> overviews(Connection &connection, std::int64_t after, std::int64_t most);

} // namespace tarvex::store
