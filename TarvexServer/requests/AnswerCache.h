#pragma once

#include "RecentMap.h"

#include <cstdint>
#include <string>

namespace tarvex::requests {

/// Answers to what was asked lately, for as long as nothing at all is changed in the database, be it by
/// another process. Not for several threads at once.
class AnswerCache
{
public:
    /// The answer kept under the key, or null. The version is that of the database, as Connection::version()
    /// has it in the transaction of the request. Valid until the next call.
    const std::string *find(const std::string &key, std::int64_t version)
    {
        if (version != m_version)
            m_answers = security::RecentMap<std::string>(capacity);
        m_version = version;
        return m_answers.find(key);
    }

    /// Keeps an answer of that version, unless it is large.
    void keep(const std::string &key, const std::string &answer)
    {
        if (answer.size() <= largest)
            m_answers[key] = answer;
    }

private:
    static constexpr std::size_t capacity = 1024;
    static constexpr std::size_t largest = 16UL * 1024;

    std::int64_t m_version = 0;
    security::RecentMap<std::string> m_answers{capacity};
};

} // namespace tarvex::requests
