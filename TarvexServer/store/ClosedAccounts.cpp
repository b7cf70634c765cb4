#include "ClosedAccounts.h"

namespace tarvex::store {

std::optional<OwnerCredentials> ownerCredentials(Connection &connection, std::int64_t accountId)
{
    Rows found = connection.rows("SELECT version, CASE WHEN disabled = 0 THEN password_hash ELSE '' END"
                                 " FROM account WHERE account_id = $1",
                                 accountId);
    if (!found.next())
        return {};
    return OwnerCredentials{.version = found.number(0), .passwordHash = std::string(found.text(1))};
}

bool closeAccount(Connection &connection, std::int64_t accountId, std::int64_t now)
{
    return connection.change("UPDATE account SET closed_at = $1, version = version + 1"
                             " WHERE account_id = $2 AND closed_at IS NULL",
                             now, accountId) > 0;
}

bool keepAccount(Connection &connection, std::int64_t accountId)
{
    return connection.change("UPDATE account SET closed_at = NULL, version = version + 1"
                             " WHERE account_id = $1 AND closed_at IS NOT NULL",
                             accountId) > 0;
}

std::optional<std::int64_t> nextClosed(Connection &connection, std::int64_t before)
{
    return connection.firstNumber("SELECT account_id FROM account WHERE closed_at < $1 LIMIT 1", before);
}

} // namespace tarvex::store
