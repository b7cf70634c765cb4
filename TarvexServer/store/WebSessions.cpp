#include "WebSessions.h"

#include <algorithm>

namespace tarvex::store {

namespace {

constexpr std::int64_t idleSeconds = std::chrono::seconds(WebSessionTimes::idle).count();
constexpr std::int64_t longestSeconds = std::chrono::seconds(WebSessionTimes::longest).count();

} // namespace

std::optional<WebSession> findWebSession(Connection &connection, std::int64_t accountId,
                                         const std::string &tokenHash, std::int64_t now)
{
    Rows found =
        connection.rows("SELECT version, changes, began_at, used_at, COALESCE(closed_at, -1)"
                        " FROM web_session JOIN account ON account.account_id = web_session.account_id"
                        " WHERE web_session.account_id = $1 AND token_hash = $2"
                        " AND account_version = version AND disabled = 0",
                        accountId, tokenHash);
    if (!found.next())
        return {};
    const std::int64_t usedAt = found.number(3);
    if (now >= std::min(found.number(2) + longestSeconds, usedAt + idleSeconds))
        return {};
    const std::int64_t closedAt = found.number(4);
    WebSession session{.accountId = accountId,
                       .tokenHash = tokenHash,
                       .version = found.number(0),
                       .changes = found.number(1),
                       .usedAt = usedAt};
    if (closedAt != -1)
        session.closedAt = closedAt;
    return session;
}

void beginWebSession(Connection &connection, std::int64_t accountId, const std::string &tokenHash,
                     std::int64_t version, std::int64_t now)
{
    connection.change("DELETE FROM web_session WHERE account_id = $1 AND token_hash IN"
                      " (SELECT token_hash FROM web_session WHERE account_id = $1"
                      " ORDER BY used_at DESC, token_hash LIMIT $2 OFFSET $3)",
                      accountId, webSessionsPerAccount, webSessionsPerAccount - 1);
    connection.change("INSERT INTO web_session (account_id, token_hash, account_version, began_at, used_at)"
                      " VALUES ($1, $2, $3, $4, $5)",
                      accountId, tokenHash, version, now, now);
}

void useWebSession(Connection &connection, const WebSession &session, std::int64_t now)
{
    connection.change("UPDATE web_session SET used_at = $1 WHERE account_id = $2 AND token_hash = $3", now,
                      session.accountId, session.tokenHash);
}

void endWebSession(Connection &connection, const WebSession &session)
{
    connection.change("DELETE FROM web_session WHERE account_id = $1 AND token_hash = $2", session.accountId,
                      session.tokenHash);
}

void endWebSessions(Connection &connection, std::int64_t accountId)
{
    connection.change("DELETE FROM web_session WHERE account_id = $1", accountId);
}

std::int64_t countWebSessions(Connection &connection, std::int64_t accountId, std::int64_t now)
{
    Rows count = connection.rows("SELECT COUNT(*) FROM web_session JOIN account"
                                 " ON account.account_id = web_session.account_id"
                                 " WHERE web_session.account_id = $1 AND account_version = version"
                                 " AND began_at > $2 AND used_at > $3",
                                 accountId, now - longestSeconds, now - idleSeconds);
    return count.next() ? count.number(0) : 0;
}

void purgeWebSessions(Connection &connection, std::int64_t now)
{
    // What has lasted for too long is not used any more.
    connection.change("DELETE FROM web_session WHERE used_at <= $1", now - idleSeconds);
}

} // namespace tarvex::store
