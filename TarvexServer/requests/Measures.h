#pragma once

#include "Answer.h"
#include "RequestKind.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace tarvex::requests {

/// Counts what happened. For many threads, and next to free.
class Counter
{
public:
    void add(std::uint64_t count = 1) { m_count.fetch_add(count, std::memory_order_relaxed); }
    std::uint64_t count() const { return m_count.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> m_count = 0;
};

/// How often something took how long. For many threads.
class Durations
{
public:
    using Time = std::chrono::microseconds;

    /// What took longer than the last is counted beyond it.
    static constexpr std::array<Time, 14> bounds = {
        {Time(100), Time(250), Time(500), Time(1'000), Time(2'500), Time(5'000), Time(10'000), Time(25'000),
         Time(50'000), Time(100'000), Time(250'000), Time(1'000'000), Time(5'000'000), Time(15'000'000)}};

    void add(std::chrono::steady_clock::duration time)
    {
        const auto whole = std::chrono::duration_cast<Time>(time);
        std::size_t place = 0;
        while (place < bounds.size() && whole > bounds[place])
            ++place;
        m_counts[place].add();
        m_sum.add(static_cast<std::uint64_t>(whole.count() > 0 ? whole.count() : 0));
    }

    /// What took longer than the bound before it and no longer than this one.
    std::uint64_t count(std::size_t bound) const { return m_counts[bound].count(); }
    Time sum() const { return Time(m_sum.count()); }

private:
    std::array<Counter, bounds.size() + 1> m_counts;
    Counter m_sum; // microseconds
};

/// What a service has done since it began, for whoever watches it: nothing of what was asked or by whom.
struct Measures
{
    struct OfKind
    {
        void add(Outcome outcome, std::chrono::steady_clock::duration took)
        {
            ended[static_cast<std::size_t>(outcome)].add();
            time.add(took);
        }

        std::array<Counter, outcomes.size()> ended;
        Durations time; ///< from the last byte of the request until its answer leaves
    };

    void count(const RequestKind &kind, const Answer &answer, std::chrono::steady_clock::duration time)
    {
        kinds[numberOf(kind)].add(answer.outcome, time);
        reasons[static_cast<std::size_t>(answer.reason)].add();
    }

    std::array<OfKind, kindCount + 1> kinds; ///< the last is for what is none of the protocol
    OfKind pages;
    std::array<Counter, requests::reasons.size()> reasons;
    Counter unreadable; ///< requests whose head was refused
    Counter connections;
    Counter busyConnections;   ///< of these, beyond the limits: heard that the service is busy
    Counter closedConnections; ///< the same, closed at once
    Counter remembered;        ///< answers that were known still
    Counter notRemembered;
    Durations writerWaits; ///< of what is to be written, for the thread that writes
    Durations hashingWaits;
};

} // namespace tarvex::requests
