#include "Writer.h"

#include "StoreError.h"

#include <algorithm>
#ifdef __linux__
#include <sys/resource.h>
#endif

namespace tarvex::store {

namespace {

/// So many share a commit at most, so that the first of them does not wait for ever more.
constexpr std::size_t largestBatch = 64;

/// How long a commit waits for another process that holds the database, or for one that is away.
constexpr std::chrono::seconds longestWait{5};

constexpr std::chrono::milliseconds pauseForMemory{20};

/// A long write leaves the processor to whoever reads meanwhile, where there are more threads than cores.
void stepBack()
{
#ifdef __linux__ // elsewhere this would be the priority of the process
    constexpr int patient = 10;
    ::setpriority(PRIO_PROCESS, /*who=*/0, patient); // of this thread; without it, as good as before
#endif
}

} // namespace

Writer::Writer(std::unique_ptr<EngineSession> session) : m_session(std::move(session))
{
    m_session->waitWhile(
        [this] { return !m_isEnding && std::chrono::steady_clock::now() < m_beginning + longestWait; });
    m_thread = std::thread([this] { run(); });
}

Writer::~Writer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_isWork.notify_one();
    m_thread.join();
}

void Writer::add(Work work, Written written)
{
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back({.work = std::move(work), .written = std::move(written), .failure = nullptr});
    }
    m_isWork.notify_one();
}

void Writer::run()
{
    stepBack();
    for (std::vector<Job> batch = nextBatch(); !batch.empty(); batch = nextBatch()) {
        commit(batch);
        for (Job &job : batch) {
            job.written(job.failure);
            job = {}; // what it holds goes before the next is told
        }
    }
}

/// Waits for work; nothing once the writer is to end.
std::vector<Writer::Job> Writer::nextBatch()
{
    std::vector<Job> batch;
    while (batch.capacity() < largestBatch) {
        try {
            batch.reserve(largestBatch);
        } catch (const std::bad_alloc &) {
            std::this_thread::sleep_for(pauseForMemory);
        }
    }
    std::unique_lock lock(m_mutex);
    m_isWork.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
    for (; !m_waiting.empty() && batch.size() < largestBatch; m_waiting.pop_front())
        batch.push_back(std::move(m_waiting.front()));
    return batch;
}

void Writer::commit(std::vector<Job> &batch) noexcept
{
    m_beginning = std::chrono::steady_clock::now();
    m_isWary = false;
    const auto failAll = [&batch] {
        for (Job &job : batch)
            job.failure = std::current_exception();
    };
    for (;;) {
        try {
            attempt(batch);
            return;
        } catch (const TransactionFailed &failure) {
            m_session->rollBack();
            if (isToBeTriedAgain(batch, failure))
                continue;
            failAll();
        } catch (...) {
            m_session->rollBack();
            failAll();
        }
        return;
    }
}

bool Writer::isToBeTriedAgain(const std::vector<Job> &batch, const TransactionFailed &failure)
{
    if (dynamic_cast<const TransactionBroken *>(&failure) != nullptr)
        return !m_isEnding && std::chrono::steady_clock::now() < m_beginning + longestWait;
    return batch.size() > 1 && !std::exchange(m_isWary, true);
}

/// Work that failed by itself has its answer, also when the rest of the batch is to be done anew.
void Writer::attempt(std::vector<Job> &batch)
{
    m_session->beginWriting();
    if (batch.size() == 1) {
        batch.front().work(*m_session); // when it fails, all that is taken back is its own
    } else {
        for (Job &job : batch) {
            if (!job.failure)
                attempt(job);
        }
    }
    m_session->commit();
}

/// A piece of work that is refused takes back itself alone, and so does one that fails, once that is known to
/// be the one. When that fails too, so does the whole batch.
void Writer::attempt(Job &job)
{
    m_session->run("SAVEPOINT job");
    try {
        job.work(*m_session);
        if (m_isWary)
            m_session->settle();
    } catch (const TransactionBroken &) {
        throw;
    } catch (const TransactionFailed &) {
        if (!m_isWary)
            throw;
        takeBack(job);
    } catch (...) {
        takeBack(job);
    }
    m_session->run("RELEASE job");
}

void Writer::takeBack(Job &job)
{
    job.failure = std::current_exception();
    m_session->run("ROLLBACK TO job");
}

} // namespace tarvex::store
