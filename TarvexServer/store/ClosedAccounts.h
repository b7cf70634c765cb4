#pragma once

#include "Connection.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarvex::store {

// An account that its owner closed: nobody signs in to it by the protocol, as if it were disabled, and after
// a while it goes for good. Until then its owner can have it kept. Times are seconds since 1970.

/// What the password of an account's owner is checked against, closed or not.
struct OwnerCredentials
{
    std::int64_t version = 0;
    std::string passwordHash; ///< empty, which no password matches, while the account is disabled
};

std::optional<OwnerCredentials> ownerCredentials(Connection &connection, std::int64_t accountId);

/// Both end all that remembers a password of the account, and tell whether it was not closed, or was.
bool closeAccount(Connection &connection, std::int64_t accountId, std::int64_t now);
bool keepAccount(Connection &connection, std::int64_t accountId);

/// An account that was closed before a time; nothing if there is none.
std::optional<std::int64_t> nextClosed(Connection &connection, std::int64_t before);

} // namespace tarvex::store
