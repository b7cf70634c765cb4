#include "Accounts.h"

#include <random>

namespace tarvex::store {

namespace {

/// Random rather than counted: no table has to be asked, on however many machines accounts are made.
std::int64_t randomAccountId()
{
    std::random_device source;
    return std::uniform_int_distribution<std::int64_t>(1)(source);
}

void insertAreas(Connection &connection, std::int64_t accountId, const std::vector<NewArea> &areas)
{
    std::int64_t areaId = 0;
    for (const NewArea &area : areas)
        connection.change("INSERT INTO area (account_id, area_id, name, color, value)"
                          " VALUES ($1, $2, $3, $4, $5)",
                          accountId, ++areaId, area.name, area.color, area.value);
}

} // namespace

std::optional<Credentials> findCredentials(Connection &connection, std::string_view login)
{
    Rows found =
        connection.rows("SELECT account.account_id, account.version, account.changes, account.password_hash"
                        " FROM login JOIN account ON account.account_id = login.account_id"
                        " WHERE login.login_digest = $1",
                        login);
    if (!found.next())
        return {};
    return Credentials{.accountId = found.number(0),
                       .version = found.number(1),
                       .changes = found.number(2),
                       .passwordHash = std::string(found.text(3))};
}

void countChange(Connection &connection, std::int64_t accountId)
{
    connection.change("UPDATE account SET changes = changes + 1 WHERE account_id = $1", accountId);
}

std::int64_t countAccounts(Connection &connection)
{
    Rows count = connection.rows("SELECT accounts FROM account_count");
    return count.next() ? count.number(0) : 0;
}

std::optional<std::int64_t> createAccount(Connection &connection, const NewAccount &account)
{
    for (const std::string &digest : account.logins) {
        if (findCredentials(connection, digest))
            return {};
    }
    const std::int64_t accountId = randomAccountId();
    connection.change("INSERT INTO account"
                      " (account_id, name, password_hash, version, next_set_id, next_goal_id, created_at)"
                      " VALUES ($1, $2, $3, 1, 1, 1, $4)",
                      accountId, account.name, account.passwordHash, account.createdAt);
    for (const std::string &digest : account.logins)
        connection.change("INSERT INTO login (login_digest, account_id) VALUES ($1, $2)", digest, accountId);
    insertAreas(connection, accountId, account.areas);
    connection.change("UPDATE account_count SET accounts = accounts + 1");
    return accountId;
}

} // namespace tarvex::store
