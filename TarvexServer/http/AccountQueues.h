#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace tarvex::http {

/// Lets one request of an account run at a time: whoever sends many waits for nobody but themselves, and
/// holds up nobody else.
class AccountQueues
{
public:
    /// Being the one that runs. The next of the account may once the last copy has gone.
    using Place = std::shared_ptr<void>;
    using Task = std::function<void(Place)>;

    /// Starts the task, at once or when those of the same account before it have gone. What it throws comes
    /// out here if it is started at once, and ends it otherwise.
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
        start(accountId, task);
    }

    /// Drops what waits, lets nothing more in, and returns once all that was started has gone.
    void end()
    {
        std::unique_lock lock(m_mutex);
        m_isEnding = true;
        m_hasLeft.wait(lock, [this] { return m_waiting.empty(); });
    }

private:
    void start(std::int64_t accountId, const Task &task)
    {
        // Without memory for the pointer it leaves all the same.
        task(Place(nullptr, [this, accountId](std::nullptr_t) { leave(accountId); }));
    }

    void leave(std::int64_t accountId) noexcept
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
        try {
            start(accountId, next);
        } catch (const std::exception &) { // it has left; whoever waits for its answer has a time limit
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_hasLeft;
    std::map<std::int64_t, std::deque<Task>> m_waiting; // an entry for each that runs
    bool m_isEnding = false;
};

} // namespace tarvex::http
