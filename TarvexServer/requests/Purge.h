#pragma once

#include "Clocks.h"
#include "Database.h"

#include <atomic>
#include <memory>

namespace tarvex::requests {

/// Removes for good what was deleted, or expired, and accounts that were closed, more than 30 days of running
/// ago, in small steps.
class Purge
{
public:
    static constexpr std::int64_t keptDays = 30;

    Purge(store::Database &database, const Clocks &clocks);
    /// Waits for the step that is under way.
    ~Purge();
    Purge(const Purge &) = delete;
    Purge &operator=(const Purge &) = delete;

    /// Begins a step, unless one is under way or all was done lately, and does not wait for it. To be called
    /// every second or so.
    void step();

private:
    void removeSome(store::Connection &connection);

    store::Database &m_database;
    const Clocks &m_clocks;
    std::shared_ptr<std::atomic<bool>> m_isUnderWay = std::make_shared<std::atomic<bool>>(false);
    std::int64_t m_account = 0; // the last that was looked at
    bool m_isRemoving = false;  // an account that was closed
    std::chrono::steady_clock::time_point m_lastStep;
};

} // namespace tarvex::requests
