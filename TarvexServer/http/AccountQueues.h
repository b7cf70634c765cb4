#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>

namespace tarvex::http {

/// Lets one request of an account run at a time: whoever sends many waits for nobody but themselves, and
/// holds up nobody else.
class AccountQueues
{
public:
    using Task = std::function<void()>;

    /// Starts the task, at once or when those of the same account before it have left.
    void enter(std::int64_t accountId, Task task)
    {
        {
            const std::lock_guard lock(m_mutex);
            if (m_isEnding)
                return;
            const auto [running, isFirst] = m_waiting.try_emplace(accountId);
            if (!isFirst) {
                running->second.push_back(std::move(task));
                return;
            }
        }
        task();
    }

    /// A task that was started has come to its end.
    void leave(std::int64_t accountId)
    {
        Task next;
        {
            const std::lock_guard lock(m_mutex);
            const auto running = m_waiting.find(accountId);
            if (running->second.empty() || m_isEnding) {
                m_waiting.erase(running);
                m_hasLeft.notify_all();
                return;
            }
            next = std::move(running->second.front());
            running->second.pop_front();
        }
        next();
    }

    /// Drops what waits, lets nothing more in, and returns once all that was started has left.
    void end()
    {
        std::unique_lock lock(m_mutex);
        m_isEnding = true;
        m_hasLeft.wait(lock, [this] { return m_waiting.empty(); });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_hasLeft;
    std::map<std::int64_t, std::deque<Task>> m_waiting; // an entry for each that runs
    bool m_isEnding = false;
};

} // namespace tarvex::http
