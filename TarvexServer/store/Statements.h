#pragma once

#include "Connection.h"

#include <cstdint>
#include <soci/soci.h>
#include <string>

namespace tarvex::store {

/// Runs a statement that changes rows, its parameters in their order, and tells whether it found one.
template<class... Values>
bool changesRow(Connection &connection, const std::string &sql, const Values &...values)
{
    soci::statement statement = ((connection.prepare << sql), ..., soci::use(values));
    statement.execute(true);
    return statement.get_affected_rows() > 0;
}

enum class Counter { Set, Goal };

/// Takes `count` ids in a row from a counter of the account and returns the first of them. Throws
/// TransactionFailed if the account is gone or the wire's 32 bits are used up.
std::int64_t takeIds(Connection &connection, std::int64_t accountId, Counter counter, std::int64_t count);

} // namespace tarvex::store
