#include "Database.h"

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

void rollBack(soci::session &session)
{
    try {
        session << "ROLLBACK";
    } catch (const soci::soci_error &) { // NOLINT(bugprone-empty-catch)
        // The engine has already ended the transaction by itself.
    }
}

void runTransaction(soci::session &session, const std::string &begin,
                    const std::function<void(Connection &)> &work)
{
    try {
        session << begin;
        work(session);
        session << "COMMIT";
    } catch (const soci::soci_error &error) {
        rollBack(session);
        // Not what(): that text quotes the values of the statement.
        throw TransactionFailed(error.get_error_message());
    } catch (...) {
        rollBack(session);
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

} // namespace

/// One writer, since the engine allows one, and a few readers beside it.
struct Database::Sessions
{
    std::mutex writerMutex;
    soci::session writer;
    soci::connection_pool readers{readerCount};
};

Database::Database(const std::string &url) : m_sessions(std::make_unique<Sessions>())
{
    const std::filesystem::path file = sqliteFile(url);
    createFile(file);
    try {
        soci::session &writer = m_sessions->writer;
        openSession(writer, file);
        claim(writer, file);
        makePrivate(file);
        writer << "PRAGMA journal_mode = WAL";
        migrate(writer, sqliteMigrations);
        for (std::size_t i = 0; i < readerCount; ++i) {
            soci::session &reader = m_sessions->readers.at(i);
            openSession(reader, file);
            reader << "PRAGMA query_only = ON";
        }
    } catch (const soci::soci_error &error) {
        throw CannotOpen("The database " + file.string() + " cannot be used: " + error.get_error_message());
    }
}

Database::~Database() = default;

void Database::read(const std::function<void(Connection &)> &work)
{
    soci::session reader(m_sessions->readers);
    runTransaction(reader, "BEGIN", work);
}

void Database::write(const std::function<void(Connection &)> &work)
{
    const std::lock_guard lock(m_sessions->writerMutex);
    runTransaction(m_sessions->writer, "BEGIN IMMEDIATE", work);
}

} // namespace tarvex::store
