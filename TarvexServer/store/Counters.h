#pragma once

#include "Connection.h"

#include <cstdint>

namespace tarvex::store {

enum class Counter { Set, Goal };

/// Takes `count` ids in a row from a counter of the account and returns the first of them. Throws
/// TransactionFailed if the account is gone or the wire's 32 bits are used up.
std::int64_t takeIds(Connection &connection, std::int64_t accountId, Counter counter, std::int64_t count);

} // namespace tarvex::store
