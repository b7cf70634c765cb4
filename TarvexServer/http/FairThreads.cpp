#include "FairThreads.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace tarvex::http {

FairThreads::FairThreads(std::size_t threads, std::size_t room) : m_room(room)
{
    for (std::size_t i = 0; i < threads; ++i)
        m_threads.emplace_back([this] { run(); });
}

FairThreads::~FairThreads()
{
    stop();
}

void FairThreads::submit(const std::string &whose, Task task)
{
    std::list<Task> one;
    one.push_back(std::move(task));
    Task dropped;
    {
        const std::lock_guard lock(m_mutex);
        const auto own = m_waiting.try_emplace(whose).first;
        own->second.splice(own->second.end(), one);
        if (++m_count > m_room) {
            const auto isShorter = [](const auto &left, const auto &right) {
                return left.second.size() < right.second.size();
            };
            const auto longest = std::max_element(m_waiting.begin(), m_waiting.end(), isShorter);
            const auto most = isShorter(*own, *longest) ? longest : own;
            dropped = take(most, std::prev(most->second.end()));
        }
    }
    m_isWork.notify_one();
    if (dropped.drop)
        dropped.drop();
}

void FairThreads::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
        m_waiting.clear();
    }
    m_isWork.notify_all();
    for (std::thread &thread : m_threads)
        thread.join();
    m_threads.clear();
}

void FairThreads::run()
{
    while (true) {
        try {
            const Task task = next();
            if (!task.run)
                return;
            task.run();
        } catch (const std::bad_alloc &) { // nothing was taken yet; the next attempt may do
        }
    }
}

/// Waits for a task, that of whoever comes behind the one served last; none at the end.
FairThreads::Task FairThreads::next()
{
    std::unique_lock lock(m_mutex);
    m_isWork.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
    if (m_isEnding)
        return {};
    auto turn = m_waiting.upper_bound(m_lastServed);
    if (turn == m_waiting.end())
        turn = m_waiting.begin();
    m_lastServed = turn->first;
    return take(turn, turn->second.begin());
}

FairThreads::Task FairThreads::take(Waiting::iterator whose, std::list<Task>::iterator place)
{
    Task task = std::move(*place);
    whose->second.erase(place);
    if (whose->second.empty())
        m_waiting.erase(whose);
    --m_count;
    return task;
}

} // namespace tarvex::http
