#pragma once

#include "Database.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::requests {

/// Makes so many invitations, and returns their codes, which nobody can learn from the database. The time is
/// in seconds since 1970.
std::vector<std::string> createInvitations(store::Database &database, std::size_t count,
                                           std::int64_t expiresAt);

} // namespace tarvex::requests
