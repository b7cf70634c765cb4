#include "Database.h"

#include "DatabaseUrl.h"
#include "EmbeddedSchema.h"
#include "Schema.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarvex::store {

namespace {

constexpr std::size_t readerCount = 4;

/// Marks a file as a database of ours, in the words of the engine: "TVXC".
constexpr int applicationId = 0x54565843;

std::string cause(int error)
{
    return std::generic_category().message(error);
}

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
        throw CannotOpen("The database " + file.string() + " cannot be opened: " + cause(errno) + ".");
    ::close(descriptor);
}

void openSession(soci::session &session, const std::filesystem::path &file)
{
    // A path from the root, since the engine reads a leading "file:" or ":" in a way of its own.
    session.open(soci::sqlite3,
                 "db=\"" + std::filesystem::absolute(file).string() + "\" timeout=5 synchronous=full");
    session << "PRAGMA foreign_keys = ON";
    session << "PRAGMA fullfsync = ON";
}

int number(soci::session &session, const std::string &query)
{
    int found = 0;
    session << query, soci::into(found);
    return found;
}

/// Refuses the database of another program. Ours is known by its mark or, from before there was one, by its
/// tables; an empty one becomes ours.
void claim(soci::session &session, const std::filesystem::path &file)
{
    if (number(session, "PRAGMA application_id") == applicationId)
        return;
    const int ours = number(session, "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name IN"
                                     " ('schema_version', 'account', 'login', 'area', 'goal_set', 'goal')");
    if (ours < 6 && number(session, "SELECT COUNT(*) FROM sqlite_master") > 0)
        throw CannotOpen("The file " + file.string() + " is the database of another program.");
    session << "PRAGMA application_id = " + std::to_string(applicationId);
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

/// Ends a transaction that was not committed, whatever made it fail.
class Rollback
{
public:
    explicit Rollback(soci::session &session) : m_session(&session) {}
    Rollback(const Rollback &) = delete;
    Rollback &operator=(const Rollback &) = delete;
    ~Rollback()
    {
        try {
            if (m_session != nullptr)
                *m_session << "ROLLBACK";
        } catch (const soci::soci_error &) { // NOLINT(bugprone-empty-catch)
            // The engine has already ended the transaction by itself.
        }
    }
    void dismiss() { m_session = nullptr; }

private:
    soci::session *m_session;
};

void runTransaction(soci::session &session, const std::string &begin,
                    const std::function<void(Connection &)> &work)
{
    try {
        session << begin;
        Rollback rollback(session);
        Connection connection(session);
        work(connection);
        session << "COMMIT";
        rollback.dismiss();
    } catch (const soci::soci_error &error) {
        // Not what(): that text quotes the values of the statement.
        throw TransactionFailed(error.get_error_message());
    }
}

} // namespace

/// The seam towards other engines: one writer, since the engine allows one, and a few readers beside it.
class Database::Sessions
{
public:
    explicit Sessions(const std::filesystem::path &file) : m_readers(readerCount)
    {
        openSession(m_writer, file);
        claim(m_writer, file);
        makePrivate(file);
        m_writer << "PRAGMA journal_mode = WAL";
        migrate(m_writer, sqliteMigrations);
        for (std::size_t i = 0; i < readerCount; ++i) {
            openSession(m_readers.at(i), file);
            m_readers.at(i) << "PRAGMA query_only = ON";
        }
    }

    void read(const std::function<void(Connection &)> &work)
    {
        soci::session reader(m_readers);
        runTransaction(reader, "BEGIN", work);
    }

    void write(const std::function<void(Connection &)> &work)
    {
        const std::lock_guard lock(m_writerMutex);
        runTransaction(m_writer, "BEGIN IMMEDIATE", work);
    }

private:
    std::mutex m_writerMutex;
    soci::session m_writer;
    soci::connection_pool m_readers;
};

Database::Database(const std::string &url)
{
    const std::filesystem::path file = sqliteFile(url);
    createFile(file);
    try {
        m_sessions = std::make_unique<Sessions>(file);
    } catch (const soci::soci_error &error) {
        throw CannotOpen("The database " + file.string() + " cannot be used: " + error.get_error_message());
    }
}

Database::~Database() = default;

void Database::read(const std::function<void(Connection &)> &work)
{
    m_sessions->read(work);
}

void Database::write(const std::function<void(Connection &)> &work)
{
    m_sessions->write(work);
}

} // namespace tarvex::store
