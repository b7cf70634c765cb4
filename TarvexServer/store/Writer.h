#pragma once

#include "EngineSession.h"
#include "StoreError.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tarvex::store {

/// The one thread that changes the database. Whatever waits for it goes in together, under one commit: a disk
/// that takes its time for each takes it once for many.
class Writer
{
public:
    using Work = std::function<void(Connection &)>;
    /// Told on the writer's thread once the work is on disk, or with why it left nothing behind. Must not
    /// throw.
    using Written = std::function<void(std::exception_ptr)>;

    explicit Writer(std::unique_ptr<EngineSession> session);
    /// What still waits is written first, unless another process holds the database or it is away.
    ~Writer();
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    void add(Work work, Written written);

private:
    struct Job
    {
        Work work;
        Written written;
        std::exception_ptr failure;
    };

    void run();
    std::vector<Job> nextBatch();
    void commit(std::vector<Job> &batch) noexcept;
    void attempt(std::vector<Job> &batch);
    void attempt(Job &job);
    void takeBack(Job &job);
    bool isToBeTriedAgain(const std::vector<Job> &batch, const TransactionFailed &failure);

    std::unique_ptr<EngineSession> m_session;
    std::chrono::steady_clock::time_point m_beginning; // of the commit that is under way
    bool m_isWary = false; // whether it waits for each piece of work, to know which one fails
    std::mutex m_mutex;
    std::condition_variable m_isWork;
    std::deque<Job> m_waiting;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread; // the last, since it uses all of these
};

} // namespace tarvex::store
