#include "Accounts.h"

#include "Progress.h"
#include "StoreError.h"

#include <random>

namespace tarvex::store {

namespace {

constexpr const char *selectCredentials =
    "SELECT account_id, version, changes, seen_on,"
    " CASE WHEN disabled = 0 AND closed_at IS NULL THEN password_hash ELSE '' END"
    " FROM account WHERE account_id = $1";

std::optional<Credentials> credentialsIn(Rows found)
{
    if (!found.next())
        return {};
    return Credentials{.accountId = found.number(0),
                       .version = found.number(1),
                       .changes = found.number(2),
                       .seenOn = found.number(3),
                       .passwordHash = std::string(found.text(4))};
}

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
        connection.run("INSERT INTO area (account_id, area_id, name, color, value)"
                       " VALUES ($1, $2, $3, $4, $5)",
                       accountId, ++areaId, area.name, area.color, area.value);
}

} // namespace

std::optional<std::int64_t> accountOf(Connection &connection, std::string_view login)
{
    return connection.firstNumber("SELECT account_id FROM login WHERE login_digest = $1", login);
}

std::optional<Credentials> findCredentials(Connection &connection, std::string_view login)
{
    // By itself: the row of a login need not be where those of its account are.
    const auto accountId = accountOf(connection, login);
    return accountId ? credentialsOf(connection, *accountId) : std::nullopt;
}

std::optional<Credentials> credentialsOf(Connection &connection, std::int64_t accountId)
{
    return credentialsIn(connection.rows(selectCredentials, accountId));
}

AwaitedCredentials::AwaitedCredentials(Connection &connection, std::int64_t accountId)
    : m_rows(connection.rowsAhead(selectCredentials, accountId))
{
}

std::optional<Credentials> AwaitedCredentials::get()
{
    return credentialsIn(std::move(m_rows));
}

void countChange(Connection &connection, std::int64_t accountId)
{
    connection.run("UPDATE account SET changes = changes + 1 WHERE account_id = $1", accountId);
}

void noteSeen(Connection &connection, std::int64_t accountId, std::int64_t day)
{
    connection.change("UPDATE account SET seen_on = $1 WHERE account_id = $2", day, accountId);
}

bool setPasswordHash(Connection &connection, std::int64_t accountId, const std::string &passwordHash)
{
    return connection.change("UPDATE account SET password_hash = $1, version = version + 1"
                             " WHERE account_id = $2",
                             passwordHash, accountId) > 0;
}

bool setDisabled(Connection &connection, std::int64_t accountId, bool isDisabled)
{
    return connection.change("UPDATE account SET disabled = $1, version = version + 1 WHERE account_id = $2",
                             isDisabled ? 1 : 0, accountId) > 0;
}

std::optional<std::string> accountName(Connection &connection, std::int64_t accountId)
{
    Rows found = connection.rows("SELECT name FROM account WHERE account_id = $1", accountId);
    return found.next() ? std::optional(std::string(found.text(0))) : std::nullopt;
}

std::int64_t countAccounts(Connection &connection)
{
    return connection.firstNumber("SELECT accounts FROM account_count").value_or(0);
}

std::optional<std::int64_t> createAccount(Connection &connection, const NewAccount &account)
{
    for (const std::string &digest : account.logins) {
        if (findCredentials(connection, digest))
            return {};
    }
    const std::int64_t accountId = randomAccountId();
    connection.run("INSERT INTO account"
                   " (account_id, name, password_hash, version, next_set_id, next_goal_id, created_at)"
                   " VALUES ($1, $2, $3, 1, 1, 1, $4)",
                   accountId, account.name, account.passwordHash, account.createdAt);
    for (const std::string &digest : account.logins) {
        if (connection.change("INSERT INTO login (login_digest, account_id) VALUES ($1, $2)"
                              " ON CONFLICT (login_digest) DO NOTHING",
                              digest, accountId) == 0)
            throw TransactionBroken("another process made an account of the same login");
    }
    insertAreas(connection, accountId, account.areas);
    noteAreaProgress(connection, accountId, account.createdAt);
    connection.run("UPDATE account_count SET accounts = accounts + 1");
    return accountId;
}

} // namespace tarvex::store
