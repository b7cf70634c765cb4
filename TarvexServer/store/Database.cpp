#include "Database.h"

#include "FilePlace.h"
#include "Schema.h"
#include "Writer.h"

#include <cerrno>
#include <fcntl.h>
#include <future>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarvex::store {

namespace {

constexpr std::size_t readerCount = 4;

/// Marks a file as a database of ours, in the words of the engine: "TVXC".
constexpr int applicationId = 0x54565843;

/// Makes the file before the engine does, so that no one but its owner can ever read it.
void createFile(const std::filesystem::path &file)
{
    std::error_code error;
    if (file.has_parent_path())
        std::filesystem::create_directories(file.parent_path(), error);
    if (error)
        throw CannotOpen("The folder of the database " + file.string() +
                         " cannot be made: " + error.message() + ".");
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        throw CannotOpen("The database " + file.string() +
                         " cannot be opened: " + std::generic_category().message(errno) + ".");
    ::close(descriptor);
}

/// Refuses the database of another program. Ours is known by its mark or, from before there was one, by its
/// tables; an empty one becomes ours.
void claim(SqliteConnection &session, const std::filesystem::path &file)
{
    if (session.numberOf("PRAGMA application_id") == applicationId)
        return;
    const auto ours = session.numberOf("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name IN"
                                       " ('schema_version', 'account', 'login', 'area', 'goal_set', 'goal')");
    if (ours < 6 && session.numberOf("SELECT COUNT(*) FROM sqlite_master") > 0)
        throw CannotOpen("The file " + file.string() + " is the database of another program.");
    session.execute("PRAGMA application_id = " + std::to_string(applicationId));
}

/// Takes the file from all but its owner, whoever made it; the engine gives files beside it the same mode.
void makePrivate(const std::filesystem::path &file)
{
    constexpr auto ownerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    for (const char *suffix : {"", "-wal", "-shm"}) {
        std::error_code ignored; // not there, or not ours to change
        std::filesystem::permissions(file.string() + suffix, ownerOnly, ignored);
    }
}

void runReading(SqliteConnection &session, const Database::Work &work)
{
    try {
        session.change("BEGIN");
        work(session);
        session.change("COMMIT");
    } catch (...) {
        session.rollBack();
        throw;
    }
}

/// The file that a database URL of the form "sqlite:PATH" names.
std::filesystem::path sqliteFile(const std::string &url)
{
    const std::string scheme = "sqlite:";
    if (url.starts_with("postgresql://") || url.starts_with("postgres://"))
        throw CannotOpen(
            "This build does not serve PostgreSQL databases yet; give a database as sqlite:PATH.");
    if (!url.starts_with(scheme) || url.size() == scheme.size())
        throw CannotOpen("The database must be given as sqlite:PATH.");
    const std::string path = url.substr(scheme.size());
    if (path.find_first_of("\"?#") != std::string::npos)
        throw CannotOpen("The path of the database holds a character that is not allowed there (\" ? #).");
    return path;
}

/// Sessions that only read, lent to one thread each.
class Readers
{
public:
    void add(std::unique_ptr<SqliteConnection> session)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_free.push_back(std::move(session));
        }
        m_isFree.notify_one();
    }
    std::unique_ptr<SqliteConnection> take()
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
    std::vector<std::unique_ptr<SqliteConnection>> m_free;
};

std::unique_ptr<SqliteConnection> reader(const std::filesystem::path &file)
{
    auto session = std::make_unique<SqliteConnection>(file);
    session->execute("PRAGMA query_only = ON");
    return session;
}

} // namespace

/// One writer, since the engine allows one, and readers beside it.
struct Database::Sessions
{
    std::unique_ptr<Writer> writer;
    std::mutex hastyMutex;
    std::unique_ptr<SqliteConnection> hasty;
    Readers readers;
    std::filesystem::path folder;
    Room room;
};

Database::Database(const std::string &url, Room room)
    : m_file(sqliteFile(url)), m_sessions(std::make_unique<Sessions>())
{
    const std::filesystem::path &file = m_file;
    createFile(file);
    m_sessions->folder = std::filesystem::absolute(file).parent_path();
    m_sessions->room = room;
    try {
        const FolderLock alone(m_sessions->folder);
        auto writer = std::make_unique<SqliteConnection>(file);
        claim(*writer, file);
        makePrivate(file);
        writer->useLog();
        migrate(*writer, sqliteMigrations);
        for (std::size_t i = 0; i < readerCount; ++i)
            m_sessions->readers.add(reader(file));
        m_sessions->hasty = reader(file);
        m_sessions->writer = std::make_unique<Writer>(std::move(writer), FilePlace(file));
    } catch (const TransactionFailed &error) {
        throw CannotOpen("The database " + file.string() + " cannot be used: " + error.what());
    }
}

Database::~Database() = default;

void Database::read(const Work &work)
{
    std::unique_ptr<SqliteConnection> lent = m_sessions->readers.take();
    const auto give = [this](SqliteConnection *session) {
        m_sessions->readers.add(std::unique_ptr<SqliteConnection>(session));
    };
    const std::unique_ptr<SqliteConnection, decltype(give)> session(lent.release(), give);
    runReading(*session, work);
}

bool Database::readInAMoment(const Work &work)
{
    const std::unique_lock lock(m_sessions->hastyMutex, std::try_to_lock);
    if (!lock)
        return false;
    try {
        m_sessions->hasty->beginHaste();
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
    const auto &[keptFree, largest] = m_sessions->room;
    if (static_cast<std::uintmax_t>(connection.size()) >= largest)
        throw TransactionFailed("the database is as large as it may be");
    std::error_code error; // with which as much is free as can be said
    if (std::filesystem::space(m_sessions->folder, error).available < keptFree)
        throw TransactionFailed("the disk has less free than is to be left so");
}

} // namespace tarvex::store
