#include "Invitations.h"

#include "StoreError.h"

namespace tarvex::store {

void createInvitation(Connection &connection, std::string_view codeHash, std::int64_t expiresAt)
{
    connection.change("INSERT INTO invitation (code_hash, expires_at) VALUES ($1, $2)", codeHash, expiresAt);
}

bool hasInvitation(Connection &connection, std::string_view codeHash, std::int64_t now)
{
    return connection.rows("SELECT 1 FROM invitation WHERE code_hash = $1 AND expires_at > $2", codeHash, now)
        .next();
}

void useInvitation(Connection &connection, std::string_view codeHash)
{
    if (connection.change("DELETE FROM invitation WHERE code_hash = $1", codeHash) == 0)
        throw TransactionBroken("another process used the invitation");
}

void purgeInvitations(Connection &connection, std::int64_t before)
{
    connection.change("DELETE FROM invitation WHERE expires_at < $1", before);
}

} // namespace tarvex::store
