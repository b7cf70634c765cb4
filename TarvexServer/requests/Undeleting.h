#pragma once

#include "Database.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tarvex::requests {

/// What can come back into an account; names are what was typed. Times are in seconds since 1970.
struct Undeletable
{
    struct Set
    {
        std::int64_t id = 0;
        std::string name;
        std::int64_t deletedAt = 0;
        std::int64_t goals = 0; ///< that were deleted with it and come back with it
    };
    struct Goal
    {
        std::int64_t id = 0;
        std::string name;
        std::int64_t setId = 0;
        std::int64_t areaId = 0;
        std::int64_t deletedAt = 0;
        bool isSetDeleted = false; ///< then the set has to come back first
    };

    std::vector<Set> sets;
    std::vector<Goal> goals; ///< that were deleted by themselves, the last first
    // Once each: goals by the thousand may share the longest name.
    std::map<std::int64_t, std::string> setNames; ///< by id, the deleted ones' too
    std::map<std::int64_t, std::string> areaNames;
};

Undeletable undeletable(store::Database &database, std::int64_t accountId);

/// Brings all of these back or, if one cannot come, none. Returns how many goals came back. `now` is in
/// seconds since 1970. Throws AccountProblem.
std::int64_t undelete(store::Database &database, std::int64_t accountId,
                      const std::vector<std::int64_t> &setIds, const std::vector<std::int64_t> &goalIds,
                      std::int64_t now);

/// The same within a transaction, which counts the change.
std::int64_t undelete(store::Connection &connection, std::int64_t accountId,
                      const std::vector<std::int64_t> &setIds, const std::vector<std::int64_t> &goalIds,
                      std::int64_t now);

} // namespace tarvex::requests
