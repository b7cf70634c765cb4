#pragma once

#include "Accounts.h"
#include "RecentMap.h"

#include <cstdint>
#include <string>
#include <tuple>

namespace tarvex::requests {

/// Answers to what was asked lately. One holds for as long as nothing at all is changed in the database, be
/// it by another process, and after that if nothing of its account was. Not for several threads at once.
class AnswerCache
{
public:
    /// The answer kept under the key, or null, if the database is what it was when that answer was last found
    /// to hold. The version is that of Connection::version() in the transaction of the request. What is
    /// returned is valid until the next call.
    const std::string *find(const std::string &key, std::int64_t version)
    {
        const Kept *kept = m_answers.find(key);
        return kept != nullptr && kept->version == version ? &kept->answer : nullptr;
    }

    /// The same if the account is what it was.
    const std::string *find(const std::string &key, std::int64_t version, const store::Credentials &account)
    {
        Kept *kept = m_answers.find(key);
        if (kept == nullptr || kept->account != stateOf(account))
            return nullptr;
        kept->version = version;
        return &kept->answer;
    }

    /// Keeps an answer, unless it is large.
    void keep(const std::string &key, std::int64_t version, const store::Credentials &account,
              const std::string &answer)
    {
        if (answer.size() <= largest)
            m_answers[key] = {version, stateOf(account), answer};
    }

private:
    using State = std::tuple<std::int64_t, std::int64_t, std::int64_t>;
    struct Kept
    {
        std::int64_t version = 0;
        State account;
        std::string answer;
    };

    static State stateOf(const store::Credentials &account)
    {
        return {account.accountId, account.version, account.changes};
    }

    static constexpr std::size_t capacity = 1024;
    static constexpr std::size_t largest = 16UL * 1024;

    security::RecentMap<Kept> m_answers{capacity};
};

} // namespace tarvex::requests
