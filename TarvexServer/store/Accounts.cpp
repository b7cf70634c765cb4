#include "Accounts.h"

#include "Statements.h"
#include "StoreError.h"

#include <limits>
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
    for (const NewArea &area : areas) {
        ++areaId;
        connection << "INSERT INTO area (account_id, area_id, name, color, value)"
                      " VALUES (:account, :area, :name, :color, :value)",
            soci::use(accountId), soci::use(areaId), soci::use(area.name), soci::use(area.color),
            soci::use(area.value);
    }
}

} // namespace

std::optional<Credentials> findCredentials(Connection &connection, const std::string &loginDigest)
{
    Credentials found;
    connection << "SELECT account.account_id, account.version, account.password_hash FROM login"
                  " JOIN account ON account.account_id = login.account_id WHERE login.login_digest = :digest",
        soci::use(loginDigest), soci::into(found.accountId), soci::into(found.version),
        soci::into(found.passwordHash);
    return connection.got_data() ? std::optional(found) : std::nullopt;
}

std::optional<std::int64_t> createAccount(Connection &connection, const NewAccount &account)
{
    for (const std::string &digest : account.loginDigests) {
        if (findCredentials(connection, digest))
            return {};
    }
    const std::int64_t accountId = randomAccountId();
    connection << "INSERT INTO account"
                  " (account_id, name, password_hash, version, next_set_id, next_goal_id, created_at)"
                  " VALUES (:account, :name, :hash, 1, 1, 1, :created)",
        soci::use(accountId), soci::use(account.name), soci::use(account.passwordHash),
        soci::use(account.createdAt);
    for (const std::string &digest : account.loginDigests)
        connection << "INSERT INTO login (login_digest, account_id) VALUES (:digest, :account)",
            soci::use(digest), soci::use(accountId);
    insertAreas(connection, accountId, account.areas);
    return accountId;
}

std::int64_t takeIds(Connection &connection, std::int64_t accountId, Counter counter, std::int64_t count)
{
    const std::string column = counter == Counter::Set ? "next_set_id" : "next_goal_id";
    std::int64_t next = 0;
    connection << "UPDATE account SET " << column << " = " << column
               << " + :count WHERE account_id = :account RETURNING " << column,
        soci::use(count), soci::use(accountId), soci::into(next);
    if (!connection.got_data())
        throw TransactionFailed("the account is gone");
    if (next - 1 > std::numeric_limits<std::int32_t>::max())
        throw TransactionFailed("the account has used up its ids");
    return next - count;
}

} // namespace tarvex::store
