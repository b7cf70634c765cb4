#pragma once

#include "Accounts.h"
#include "RecentMap.h"

#include <cstdint>
#include <string>
#include <tuple>

namespace tarvex::requests {

/// Answers to what was asked lately. One holds for as long as nothing of its account is changed, be it by
/// another process. Not for several threads at once.
class AnswerCache
{
public:
    /// The answer kept under the key if the account is what it was, or null. Valid until the next call.
    const std::string *find(const std::string &key, const store::Credentials &account)
    {
        const Kept *kept = m_answers.find(key);
        return kept != nullptr && kept->account == stateOf(account) ? &kept->answer : nullptr;
    }

    /// Keeps an answer, unless it is large.
    void keep(const std::string &key, const store::Credentials &account, const std::string &answer)
    {
        if (answer.size() <= largest)
            m_answers[key] = {stateOf(account), answer};
    }

private:
    using State = std::tuple<std::int64_t, std::int64_t, std::int64_t>;
    struct Kept
    {
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
