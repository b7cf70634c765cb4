#include "Writer.h"

#include "StoreError.h"

#include <algorithm>

namespace tarvex::store {

namespace {

/// So many share a commit at most, so that the first of them does not wait for ever more.
constexpr std::size_t largestBatch = 64;

} // namespace

Writer::Writer(std::unique_ptr<SqliteConnection> session)
    : m_session(std::move(session)), m_thread([this] { run(); })
{
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
    for (std::vector<Job> batch = nextBatch(); !batch.empty(); batch = nextBatch()) {
        commit(batch);
        for (const Job &job : batch)
            job.written(job.failure);
    }
}

/// Waits for work; nothing once the writer is to end.
std::vector<Writer::Job> Writer::nextBatch()
{
    std::unique_lock lock(m_mutex);
    m_isWork.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
    const auto size = static_cast<std::ptrdiff_t>(std::min(m_waiting.size(), largestBatch));
    const auto end = m_waiting.begin() + size;
    std::vector<Job> batch(std::make_move_iterator(m_waiting.begin()), std::make_move_iterator(end));
    m_waiting.erase(m_waiting.begin(), end);
    return batch;
}

void Writer::commit(std::vector<Job> &batch)
{
    try {
        m_session->change("BEGIN IMMEDIATE");
        for (Job &job : batch)
            attempt(job);
        m_session->change("COMMIT");
    } catch (...) {
        for (Job &job : batch)
            job.failure = std::current_exception();
        m_session->rollBack();
    }
}

/// A piece of work that fails takes back itself alone. When that fails too, so does the whole batch.
void Writer::attempt(Job &job)
{
    m_session->change("SAVEPOINT job");
    try {
        job.work(*m_session);
    } catch (...) {
        job.failure = std::current_exception();
        m_session->change("ROLLBACK TO job");
    }
    m_session->change("RELEASE job");
}

} // namespace tarvex::store
