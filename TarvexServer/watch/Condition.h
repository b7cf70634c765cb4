#pragma once

#include "Database.h"
#include "Probe.h"

#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <string>

namespace tarvex::watch {

/// What state a running service is in. The network thread says what it does; one other thread asks.
class Condition
{
public:
    explicit Condition(store::Database &database) : m_database(database) {}

    // For the network thread.

    void madeRound() { m_lastRound = std::chrono::steady_clock::now(); }
    void drains() { m_isDraining = true; }

    // For the one that asks.

    /// A sentence on why the service does nothing any more; empty while it does.
    std::string lifeFault() const;
    /// A sentence on why the service should get no requests; empty while it should. Has the database take a
    /// small write, unless it did so in the last few seconds, and waits two seconds for that at most.
    std::string fault();
    /// What the last such write found; nothing after one that failed.
    std::optional<store::Figures> figures() const { return m_figures; }

private:
    using Time = std::chrono::steady_clock::time_point;

    void look();
    void beginLook();

    store::Database &m_database;
    std::atomic<Time> m_lastRound = std::chrono::steady_clock::now();
    std::atomic<bool> m_isDraining = false;
    std::future<store::Figures> m_pending;
    Time m_begin;        // of the last look, whether it has come to its end or not
    std::string m_fault; // what that found
    std::optional<store::Figures> m_figures;
};

} // namespace tarvex::watch
