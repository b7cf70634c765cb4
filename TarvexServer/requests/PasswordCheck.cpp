#include "ClosedAccounts.h"
#include "Installation.h"
#include "PasswordHash.h"
#include "Service.h"
#include "Wipe.h"

namespace tarvex::requests {

PasswordQuestion::~PasswordQuestion()
{
    security::wipe(login);
    security::wipe(password);
}

/// By a login those of the protocol: whoever guesses here and there has no more guesses than in one place. An
/// account that is known has keys of its own.
Failures::Keys Service::limitedKeys(const PasswordQuestion &question) const
{
    const std::string &peer = question.peer;
    const bool isByLogin = question.accountId == 0;
    const std::string account = std::to_string(question.accountId);
    Failures::Keys keys;
    keys.login = isByLogin ? loginKey(m_hash, question.login) : m_hash({"account", account});
    if (peer.empty())
        return keys;
    keys.address = m_hash({"peer", peer});
    keys.loginThere =
        isByLogin ? m_hash({"login", question.login, peer}) : m_hash({"account", account, peer});
    return keys;
}

PasswordAnswer Service::check(const PasswordQuestion &question)
{
    if (m_clocks.steady() - question.arrival > patience)
        return {.outcome = Outcome::Busy};
    const Failures::Keys keys = limitedKeys(question);
    std::int64_t accountId = question.accountId;
    bool isExhausted = m_failures.isExhausted(keys);
    store::OwnerCredentials credentials;
    m_database.read([&](store::Connection &connection) {
        isExhausted = isExhausted || m_failures.isExhausted(keys, connection);
        if (question.accountId == 0)
            accountId = store::accountOf(connection, keys.login).value_or(0);
        credentials = store::ownerCredentials(connection, accountId).value_or(store::OwnerCredentials());
    });
    if (isExhausted)
        return {.outcome = Outcome::TooManyAttempts};
    if (!security::matchesPassword(credentials.passwordHash, question.password)) {
        m_failures.countFailure(keys);
        return {.outcome = Outcome::NotSignedIn};
    }
    return {.outcome = Outcome::Done, .accountId = accountId, .version = credentials.version};
}

} // namespace tarvex::requests
