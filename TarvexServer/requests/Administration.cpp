#include "Administration.h"

#include "AccountRemoval.h"
#include "AccountTexts.h"
#include "ClosedAccounts.h"
#include "NewAccounts.h"
#include "WireText.h"

#include <chrono>
#include <thread>

namespace tarvex::requests {

namespace {

constexpr std::int64_t accountsPerStep = 100;
constexpr std::int64_t rowsPerStep = 500;
/// Whoever else waits for the database looks for it every few milliseconds.
constexpr std::chrono::milliseconds betweenSteps{20};

void require(std::string_view fault)
{
    if (!fault.empty())
        throw AccountProblem(std::string(fault));
}

void requireThere(bool isThere, std::int64_t accountId)
{
    if (!isThere)
        throw AccountProblem("There is no account " + std::to_string(accountId) + ".");
}

} // namespace

store::NewAccount newAccountOf(const security::KeyedHash &hash, const AccountTexts &texts, std::int64_t now)
{
    require(textsFault(texts.login, texts.password, texts.name));
    return newAccount(loginKeys(hash, texts.login), wire::storableName(texts.name).value_or(""),
                      newPasswordHash(texts.password), now);
}

std::int64_t requireNew(std::optional<std::int64_t> accountId)
{
    if (!accountId)
        throw AccountProblem("An account with this e-mail address already exists.");
    return *accountId;
}

std::int64_t createAccount(store::Database &database, const security::KeyedHash &hash,
                           const AccountTexts &texts, std::int64_t now)
{
    const store::NewAccount account = newAccountOf(hash, texts, now);
    std::int64_t accountId = 0;
    database.write(
        [&](store::Connection &connection) { accountId = requireNew(createWithSet(connection, account)); });
    return accountId;
}

std::int64_t accountOfLogin(store::Database &database, const security::KeyedHash &hash,
                            std::string_view login)
{
    std::optional<store::Credentials> found;
    database.read([&](store::Connection &connection) {
        for (const std::string &key : loginKeys(hash, login)) {
            if (!found)
                found = store::findCredentials(connection, key);
        }
    });
    if (!found)
        throw AccountProblem("There is no account with this login.");
    return found->accountId;
}

store::AccountOverview overviewOf(store::Database &database, std::int64_t accountId)
{
    std::optional<store::AccountOverview> found;
    database.read([&](store::Connection &connection) { found = store::findOverview(connection, accountId); });
    requireThere(found.has_value(), accountId);
    return *found;
}

void eachOverview(store::Database &database, const std::function<void(const store::AccountOverview &)> &told)
{
    std::int64_t after = 0;
    for (std::vector<store::AccountOverview> some;; after = some.back().accountId) {
        database.read([&](store::Connection &connection) {
            some = store::overviews(connection, after, accountsPerStep);
        });
        if (some.empty())
            return;
        for (const store::AccountOverview &overview : some)
            told(overview);
    }
}

void setPassword(store::Database &database, std::int64_t accountId, std::string_view password)
{
    require(passwordFault(password));
    const std::string passwordHash = newPasswordHash(password);
    database.write([&](store::Connection &connection) {
        requireThere(store::setPasswordHash(connection, accountId, passwordHash), accountId);
    });
}

void setDisabled(store::Database &database, std::int64_t accountId, bool isDisabled)
{
    database.write([&](store::Connection &connection) {
        requireThere(store::setDisabled(connection, accountId, isDisabled), accountId);
        if (!isDisabled)
            store::keepAccount(connection, accountId);
    });
}

bool removeAccount(store::Database &database, std::int64_t accountId)
{
    database.write([&](store::Connection &connection) {
        requireThere(store::freeLogins(connection, accountId), accountId);
    });
    for (std::int64_t removed = rowsPerStep; removed == rowsPerStep;) {
        std::this_thread::sleep_for(betweenSteps);
        database.write([&](store::Connection &connection) {
            removed = store::removeSome(connection, accountId, rowsPerStep);
        });
    }
    database.write([&](store::Connection &connection) { store::removeAccount(connection, accountId); });
    return database.emptyLog();
}

} // namespace tarvex::requests
