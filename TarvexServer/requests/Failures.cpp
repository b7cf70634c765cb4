#include "Failures.h"

#include "Incidents.h"

#include <utility>

namespace tarvex::requests {

namespace {

template<class Count>
bool isAnyExhausted(const Failures::Keys &keys, const Count &failuresOf)
{
    const auto exceed = [&](const std::string &key, std::int64_t limit) {
        return !key.empty() && failuresOf(key) >= limit;
    };
    const bool isElsewhere = !keys.loginThere.empty() && failuresOf(keys.loginThere) == 0;
    return exceed(keys.address, Failures::limit) || exceed(keys.newAccounts, Failures::limit) ||
           exceed(keys.login, isElsewhere ? Failures::limitElsewhere : Failures::limit);
}

} // namespace

bool Failures::isExhausted(const Keys &keys)
{
    return isAnyExhausted(keys, [this](const std::string &key) { return m_counts.failuresOf(key); });
}

bool Failures::isExhausted(const Keys &keys, store::Connection &connection) const
{
    const std::int64_t now = m_clocks.seconds();
    return isAnyExhausted(keys, [&](const std::string &key) {
        return store::failuresOf(connection, key, now - security::FailureCounts::window.count(), now);
    });
}

void Failures::countFailure(const Keys &keys)
{
    count({keys.address, keys.login, keys.loginThere});
}

void Failures::countNewAccount(const Keys &keys)
{
    count({keys.newAccounts});
}

void Failures::count(std::vector<std::string> keys)
{
    std::erase(keys, "");
    for (const std::string &key : keys)
        m_counts.countFailure(key);
    m_database.write(
        [keys = std::move(keys), now = m_clocks.seconds()](store::Connection &connection) {
            for (const std::string &key : keys)
                store::addFailure(connection, key, now);
        },
        [](const std::exception_ptr &) {});
}

} // namespace tarvex::requests
