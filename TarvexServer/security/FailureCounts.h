#pragma once

#include "RecentMap.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace tarvex::security {

/// Counts failures per key (a login, an address) over a sliding window. For many threads.
///
/// Only what has failed counts, not what is still being tried: whoever asks must bound how many attempts run
/// at the same time, for that many may go beyond a limit.
class FailureCounts
{
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    static constexpr std::size_t most = 100; ///< more are not counted
    static constexpr std::chrono::seconds window{60};

    explicit FailureCounts(Clock clock, std::size_t capacity = 50'000)
        : m_clock(std::move(clock)), m_failures(capacity)
    {
    }

    /// The key's failures within the window.
    std::int64_t failuresOf(const std::string &key);

    void countFailure(const std::string &key);

private:
    Clock m_clock;
    std::mutex m_mutex;
    RecentMap<std::deque<std::chrono::steady_clock::time_point>> m_failures;
};

} // namespace tarvex::security
