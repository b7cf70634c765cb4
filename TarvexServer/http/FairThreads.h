#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tarvex::http {

/// Threads for work that takes long, shared fairly: those for whom work waits get their turn one after the
/// other, however much waits for each.
class FairThreads
{
public:
    struct Task
    {
        std::function<void()> run;
        std::function<void()> drop; ///< instead of it, when there is no room
    };

    FairThreads(std::size_t threads, std::size_t room);
    ~FairThreads();
    FairThreads(const FairThreads &) = delete;
    FairThreads &operator=(const FairThreads &) = delete;

    /// Runs the task on one of the threads. When no more may wait, the last task of whoever has most waiting
    /// is dropped, on the caller's thread; it may be this one.
    void submit(const std::string &whose, Task task);

    /// Waits for what runs; what waits is forgotten.
    void stop();

private:
    using Waiting = std::map<std::string, std::list<Task>>;

    void run();
    Task next();
    Task take(Waiting::iterator whose, std::list<Task>::iterator place);

    std::size_t m_room;
    std::mutex m_mutex;
    std::condition_variable m_isWork;
    Waiting m_waiting; // nobody without a task
    std::string m_lastServed;
    std::size_t m_count = 0;
    bool m_isEnding = false;
    std::vector<std::thread> m_threads;
};

} // namespace tarvex::http
