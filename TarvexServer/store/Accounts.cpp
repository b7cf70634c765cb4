#include "Accounts.h"

#include "IdCounters.h"
#include "StoreError.h"

#include <limits>
#include <random>
#include <soci/soci.h>

namespace tarvex::store {

namespace {

/// Random rather than counted: no table has to be asked, on however many machines accounts are made.
long long randomAccountId()
{
    std::random_device source;
    std::uniform_int_distribution<long long> ids(1, std::numeric_limits<long long>::max());
    return ids(source);
}

void insertAreas(soci::session &session, long long accountId, const std::vector<NewArea> &areas)
{
    long long areaId = 0;
    for (const NewArea &area : areas) {
        ++areaId;
        session << "INSERT INTO area (account_id, area_id, name, color, value)"
                   " VALUES (:account, :area, :name, :color, :value)",
            soci::use(accountId), soci::use(areaId), soci::use(area.name), soci::use(area.color),
            soci::use(area.value);
    }
}

} // namespace

std::optional<Credentials> findCredentials(Connection &connection, const std::string &loginDigest)
{
    soci::session &session = connection.session();
    long long accountId = 0;
    long long version = 0;
    std::string passwordHash;
    session << "SELECT account.account_id, account.version, account.password_hash FROM login"
               " JOIN account ON account.account_id = login.account_id WHERE login.login_digest = :digest",
        soci::use(loginDigest), soci::into(accountId), soci::into(version), soci::into(passwordHash);
    if (!session.got_data())
        return {};
    return Credentials{.accountId = accountId, .version = version, .passwordHash = passwordHash};
}

std::optional<std::int64_t> createAccount(Connection &connection, const NewAccount &account)
{
    for (const std::string &digest : account.loginDigests) {
        if (findCredentials(connection, digest))
            return {};
    }
    soci::session &session = connection.session();
    const long long accountId = randomAccountId();
    const long long createdAt = account.createdAt;
    session << "INSERT INTO account"
               " (account_id, name, password_hash, version, next_set_id, next_goal_id, created_at)"
               " VALUES (:account, :name, :hash, 1, 1, 1, :created)",
        soci::use(accountId), soci::use(account.name), soci::use(account.passwordHash), soci::use(createdAt);
    for (const std::string &digest : account.loginDigests)
        session << "INSERT INTO login (login_digest, account_id) VALUES (:digest, :account)",
            soci::use(digest), soci::use(accountId);
    insertAreas(session, accountId, account.areas);
    return accountId;
}

std::int64_t takeIds(soci::session &session, std::int64_t accountId, Counter counter, std::int64_t count)
{
    const std::string column = counter == Counter::Set ? "next_set_id" : "next_goal_id";
    const long long account = accountId;
    const long long taken = count;
    long long next = 0;
    session << "UPDATE account SET " << column << " = " << column
            << " + :count WHERE account_id = :account RETURNING " << column,
        soci::use(taken), soci::use(account), soci::into(next);
    if (!session.got_data())
        throw TransactionFailed("the account is gone");
    if (next - 1 > std::numeric_limits<std::int32_t>::max())
        throw TransactionFailed("the account has used up its ids");
    return next - taken;
}

} // namespace tarvex::store
