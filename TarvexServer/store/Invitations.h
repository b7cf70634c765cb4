#pragma once

#include "Connection.h"

#include <cstdint>
#include <string_view>

namespace tarvex::store {

// Invitations are known by a hash of their codes. Times are in seconds since 1970.

void createInvitation(Connection &connection, std::string_view codeHash, std::int64_t expiresAt);

/// Whether there is such an invitation that has not expired.
bool hasInvitation(Connection &connection, std::string_view codeHash, std::int64_t now);

/// Uses it up; it must be there.
void useInvitation(Connection &connection, std::string_view codeHash);

/// Removes those that expired before a time.
void purgeInvitations(Connection &connection, std::int64_t before);

} // namespace tarvex::store
