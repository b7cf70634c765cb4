#pragma once

#include "RecentMap.h"

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace tarvex::security {

/// Counts failed attempts per key (a login, an address) over a sliding window.
///
/// An attempt counts as failed from its beginning, until it is forgiven; so any number of attempts at the
/// same moment are held to the limit as well. For many threads.
class FailureLimits
{
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    static constexpr std::size_t limit = 10;
    static constexpr std::chrono::seconds window{60};

    explicit FailureLimits(Clock clock, std::size_t capacity = 50'000)
        : m_clock(std::move(clock)), m_attempts(capacity)
    {
    }

    /// Records an attempt and returns true, or false without recording it when the key has used up its limit.
    bool admit(const std::string &key);

    /// Takes the key's latest attempt back: it did not fail.
    void forgive(const std::string &key);

private:
    Clock m_clock;
    std::mutex m_mutex;
    RecentMap<std::deque<std::chrono::steady_clock::time_point>> m_attempts;
};

} // namespace tarvex::security
