#pragma once

#include "Connection.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tarvex::store {

/// Somebody who is signed in with a browser, in a session that has not ended. Times are seconds since 1970.
struct WebSession
{
    std::int64_t accountId = 0;
    std::string tokenHash;    ///< what the session is found by
    std::int64_t version = 0; ///< of the account, as its changes are
    std::int64_t changes = 0;
    std::int64_t usedAt = 0;                   ///< as it is kept, which is not every use
    std::optional<std::int64_t> closedAt = {}; ///< if the account is closed, and can be kept or left alone
};

/// How long a session lasts.
struct WebSessionTimes
{
    static constexpr std::chrono::hours idle{12};
    static constexpr std::chrono::hours longest{14 * 24};
    /// Uses closer together than this are not all kept.
    static constexpr std::chrono::minutes betweenUses{5};
};

constexpr std::int64_t webSessionsPerAccount = 50;

/// The session, unless it is unknown or over, its password was changed or its account is disabled.
std::optional<WebSession> findWebSession(Connection &connection, std::int64_t accountId,
                                         const std::string &tokenHash, std::int64_t now);

/// Begins a session under that version of the account. Beyond so many the one unused for longest ends.
void beginWebSession(Connection &connection, std::int64_t accountId, const std::string &tokenHash,
                     std::int64_t version, std::int64_t now);

void useWebSession(Connection &connection, const WebSession &session, std::int64_t now);
void endWebSession(Connection &connection, const WebSession &session);
void endWebSessions(Connection &connection, std::int64_t accountId);
std::int64_t countWebSessions(Connection &connection, std::int64_t accountId, std::int64_t now);

/// Removes the sessions of all accounts that are over by their time.
void purgeWebSessions(Connection &connection, std::int64_t now);

} // namespace tarvex::store
