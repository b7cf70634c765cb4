#include "Database.h"

#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "Writer.h"

#include <future>

namespace tarvex::store {

namespace {

constexpr std::size_t readerCount = 4;
constexpr int readAttempts = 3;

void runReading(EngineSession &session, const Database::Work &work)
{
    try {
        session.beginReading();
        work(session);
        session.commit();
    } catch (...) {
        session.rollBack();
        throw;
    }
}

/// Sessions that only read, lent to one thread each.
class Readers
{
public:
    void add(std::unique_ptr<EngineSession> session)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_free.push_back(std::move(session));
        }
        m_isFree.notify_one();
    }
    std::unique_ptr<EngineSession> take()
    {
        std::unique_lock lock(m_mutex);
        m_isFree.wait(lock, [this] { return !m_free.empty(); });
        auto session = std::move(m_free.back());
        m_free.pop_back();
        return session;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_isFree;
    std::vector<std::unique_ptr<EngineSession>> m_free;
};

std::unique_ptr<Engine> engineOf(const std::string &url, const Room &room)
{
    if (PostgresEngine::isUrl(url))
        return std::make_unique<PostgresEngine>(url, room);
    return std::make_unique<SqliteEngine>(url, room);
}

} // namespace

/// One writer, and readers beside it.
struct Database::Sessions
{
    std::unique_ptr<Engine> engine;
    std::unique_ptr<Writer> writer;
    std::mutex hastyMutex;
    std::unique_ptr<EngineSession> hasty;
    Readers readers;
};

Database::Database(const std::string &url, const Room &room) : m_sessions(std::make_unique<Sessions>())
{
    m_sessions->engine = engineOf(url, room);
    Engine &engine = *m_sessions->engine;
    try {
        std::unique_ptr<EngineSession> writer = engine.openWriter();
        for (std::size_t i = 0; i < readerCount; ++i)
            m_sessions->readers.add(engine.openReader());
        m_sessions->hasty = engine.openHastyReader();
        m_sessions->writer = std::make_unique<Writer>(std::move(writer));
    } catch (const TransactionFailed &error) {
        const std::string name = engine.file().empty() ? "" : " " + engine.file().string();
        throw CannotOpen("The database" + name + " cannot be used: " + error.what() + ".");
    }
}

Database::~Database() = default;

void Database::read(const Work &work)
{
    const auto give = [this](EngineSession *session) {
        m_sessions->readers.add(std::unique_ptr<EngineSession>(session));
    };
    const std::unique_ptr<EngineSession, decltype(give)> session(m_sessions->readers.take().release(), give);
    for (int attempt = 1;; ++attempt) {
        try {
            runReading(*session, work);
            return;
        } catch (const TransactionBroken &) {
            if (attempt == readAttempts)
                throw;
        }
    }
}

bool Database::readInAMoment(const Work &work)
{
    const std::unique_lock lock(m_sessions->hastyMutex, std::try_to_lock);
    if (!lock || !m_sessions->hasty)
        return false;
    try {
        runReading(*m_sessions->hasty, work);
        return true;
    } catch (const TransactionHindered &) {
        return false;
    }
}

void Database::write(const Work &work)
{
    const auto done =
        std::make_shared<std::promise<void>>(); // which the writer's thread may be the last to leave
    write(work, [done](const std::exception_ptr &failure) {
        failure ? done->set_exception(failure) : done->set_value();
    });
    done->get_future().get();
}

void Database::write(Work work, Written written)
{
    m_sessions->writer->add(std::move(work), std::move(written));
}

void Database::requireRoom(Connection &connection) const
{
    m_sessions->engine->requireRoom(connection);
}

bool Database::emptyLog()
{
    return m_sessions->engine->emptyLog();
}

std::filesystem::path Database::file() const
{
    return m_sessions->engine->file();
}

} // namespace tarvex::store
