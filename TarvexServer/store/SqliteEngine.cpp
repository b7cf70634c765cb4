#include "SqliteEngine.h"

#include "Backup.h"
#include "Schema.h"
#include "SqliteConnection.h"
#include "SqliteFile.h"
#include "StoreError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarvex::store {

namespace {

/// The engine would throw away the log of a file that is lost, and with it the last of what was saved.
void refuseLogAlone(const std::filesystem::path &file)
{
    const std::filesystem::path log = file.string() + "-wal";
    if (!std::filesystem::exists(file) && std::filesystem::exists(log))
        throw CannotOpen("The database " + file.string() + " is missing, but its log is there: " +
                         log.string() + ". Put the file back or restore a copy, or move the log away.");
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
        throw CannotOpen("The database " + file.string() +
                         " cannot be opened: " + std::generic_category().message(errno) + ".");
    ::close(descriptor);
}

/// Refuses the database of another program. An empty one becomes ours.
void claim(SqliteConnection &session, const std::filesystem::path &file)
{
    if (session.numberOf("PRAGMA application_id") == applicationId)
        return;
    if (!isOurs(session) && session.numberOf("SELECT COUNT(*) FROM sqlite_master") > 0)
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

/// What a migration would change is kept as it was, unless the operator does without.
void keepCopy(const std::filesystem::path &file, const Room &room)
{
    if (room.withoutCopy)
        return;
    const std::filesystem::path copy =
        file.string() + ".before-schema-" + std::to_string(sqliteMigrations.size());
    try {
        copyDatabase(file, copy, /*pause=*/{});
    } catch (const MaintenanceFailed &error) {
        throw CannotOpen("The database " + file.string() +
                         " needs a newer schema, and no copy of it can be kept first. " + error.what() +
                         " To go on without one, start serve with --migrate-without-copy.");
    }
}

std::unique_ptr<SqliteConnection> reader(const std::filesystem::path &file)
{
    auto session = std::make_unique<SqliteConnection>(file);
    session->execute("PRAGMA query_only = ON");
    return session;
}

} // namespace

SqliteEngine::SqliteEngine(const std::string &url, const Room &room)
    : m_file(sqliteFile(url)), m_folder(std::filesystem::absolute(m_file).parent_path()), m_room(room)
{
}

std::unique_ptr<EngineSession> SqliteEngine::openWriter()
{
    refuseLogAlone(m_file);
    createFile(m_file);
    m_inUse.emplace(m_file, UseLock::Kind::Shared);
    const FolderLock alone(m_folder);
    auto writer = std::make_unique<SqliteConnection>(m_file);
    claim(*writer, m_file);
    makePrivate(m_file);
    writer->useLog();
    // What is up to date is not written to: on a busy database that could wait for long.
    if (schemaVersion(*writer) != static_cast<std::int64_t>(sqliteMigrations.size()))
        migrate(*writer, sqliteMigrations, [this] { keepCopy(m_file, m_room); });
    writer->guard(FilePlace(m_file));
    return writer;
}

std::unique_ptr<EngineSession> SqliteEngine::openReader()
{
    return reader(m_file);
}

std::unique_ptr<EngineSession> SqliteEngine::openHastyReader()
{
    auto session = reader(m_file);
    session->haste();
    return session;
}

void SqliteEngine::requireRoom(Connection &connection) const
{
    if (static_cast<std::uintmax_t>(connection.size()) >= m_room.largest)
        throw NoRoom("the database is as large as it may be");
    std::error_code error; // with which as much is free as can be said
    if (std::filesystem::space(m_folder, error).available < m_room.keptFree)
        throw NoRoom("the disk has less free than is to be left so");
}

bool SqliteEngine::emptyLog()
{
    return SqliteConnection(m_file).emptyLog();
}

} // namespace tarvex::store
