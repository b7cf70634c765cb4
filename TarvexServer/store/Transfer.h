#pragma once

#include "Connection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::store {

/// A table that is part of what an installation holds, as opposed to what an engine needs for itself.
struct Table
{
    std::string name;
    std::vector<std::string> columns;
    bool isOfAccounts = true; ///< has the column account_id
};

/// All of them, each behind those that it refers to.
const std::vector<Table> &tables();

/// Whether anybody has an account there, or the logins are kept under a secret already.
bool isInUse(Connection &connection);

/// Copies all rows into a database that is not in use, and returns their number. The source must not change
/// meanwhile.
std::int64_t copyAll(Connection &from, Connection &to);

/// The name of the first table whose rows are not the same in both; empty if there is none.
std::string firstDifference(Connection &one, Connection &other);

} // namespace tarvex::store
