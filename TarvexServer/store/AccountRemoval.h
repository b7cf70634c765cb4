#pragma once

#include "Connection.h"

#include <cstdint>

namespace tarvex::store {

/// Frees the logins of an account: from then on nobody finds it but by its id. Tells whether there is such an
/// account.
bool freeLogins(Connection &connection, std::int64_t accountId);

/// Removes for good so many goals, deleted ones too, and days of progress of an account at most; returns how
/// many they were.
std::int64_t removeSome(Connection &connection, std::int64_t accountId, std::int64_t most);

/// Removes for good an account with all that is left of it.
void removeAccount(Connection &connection, std::int64_t accountId);

} // namespace tarvex::store
