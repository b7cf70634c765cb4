#include "Restore.h"

#include "Backup.h"
#include "Integrity.h"
#include "Schema.h"
#include "SqliteFile.h"
#include "StoreError.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <map>
#include <system_error>
#include <unistd.h>

namespace tarvex::store {

namespace {

/// How far an account has come: what is beyond these numbers, no client has seen.
struct Reach
{
    std::int64_t nextSetId = 0;
    std::int64_t nextGoalId = 0;
    std::int64_t version = 0;
    std::int64_t changes = 0;
};

using Reaches = std::map<std::int64_t, Reach>; // by account

Reaches reachesOf(SqliteConnection &session)
{
    Reaches reaches;
    Rows found = session.rows("SELECT account_id, next_set_id, next_goal_id, version, changes FROM account");
    while (found.next())
        reaches[found.number(0)] = {.nextSetId = found.number(1),
                                    .nextGoalId = found.number(2),
                                    .version = found.number(3),
                                    .changes = found.number(4)};
    return reaches;
}

/// Those of the database that is to be replaced, as far as it can still be read.
Reaches reachesOf(const std::filesystem::path &database)
{
    try {
        return reachesOf(*openAsItIs(database));
    } catch (const CannotOpen &) {
    } catch (const TransactionHindered &) {
        throw;
    } catch (const TransactionFailed &) { // damaged, or older than these numbers
    }
    return {};
}

/// An id beyond all that clients may know, where nobody can tell what they do. It leaves half of those that
/// the wire still has.
std::int64_t farBeyond(std::int64_t nextId)
{
    constexpr std::int64_t margin = 1'000'000;
    constexpr std::int64_t last = std::numeric_limits<std::int32_t>::max();
    return nextId + std::clamp<std::int64_t>((last - nextId) / 2, 0, margin);
}

Reach raised(const Reach &copied, const Reaches &replaced, std::int64_t accountId)
{
    const auto found = replaced.find(accountId);
    const Reach known = found != replaced.end() ? found->second
                                                : Reach{.nextSetId = farBeyond(copied.nextSetId),
                                                        .nextGoalId = farBeyond(copied.nextGoalId)};
    return {.nextSetId = std::max(copied.nextSetId, known.nextSetId),
            .nextGoalId = std::max(copied.nextGoalId, known.nextGoalId),
            .version = std::max(copied.version, known.version) + 1,
            .changes = std::max(copied.changes, known.changes) + 1};
}

std::unique_ptr<SqliteConnection> openReadied(const std::filesystem::path &file,
                                              const std::filesystem::path &copy)
{
    auto session = openAsItIs(file, copy);
    session->endLog();
    if (const auto found = damages(*session); !found.empty())
        throw MaintenanceFailed("The copy " + copy.string() + " is not whole. " + found.front());
    migrate(*session, sqliteMigrations);
    return session;
}

/// Copies the file with the log that may lie beside it.
void copyWithLog(const std::filesystem::path &copy, const std::filesystem::path &target)
{
    if (!std::filesystem::is_regular_file(copy))
        throw MaintenanceFailed("There is no copy " + copy.string() + ".");
    copyPrivately(copy, target);
    const std::filesystem::path log = copy.string() + "-wal";
    if (std::filesystem::exists(log))
        copyPrivately(log, target.string() + "-wal");
}

/// The name or, where it is taken, the same with a number.
std::filesystem::path freeName(const std::string &name)
{
    std::filesystem::path found = name;
    for (int number = 2; std::filesystem::exists(found); ++number)
        found = name + "-" + std::to_string(number);
    return found;
}

/// Keeps a log under another name, which it returns; it would be taken for that of the new file.
std::optional<std::filesystem::path> keepLog(const std::filesystem::path &database,
                                             const std::filesystem::path &keptAs)
{
    std::optional<std::filesystem::path> kept;
    for (const char *suffix : {"-journal", "-wal"}) {
        const std::filesystem::path name = keptAs.string() + suffix;
        std::error_code error; // not there
        std::filesystem::rename(database.string() + suffix, name, error);
        if (!error)
            kept = name;
    }
    std::error_code ignored; // not there
    std::filesystem::remove(database.string() + "-shm", ignored);
    return kept;
}

/// Brings a database and its log into one file, and keeps everybody out of it as long as the session lasts.
std::unique_ptr<SqliteConnection> closed(const std::filesystem::path &database,
                                         const std::filesystem::path &keptAs)
{
    try {
        auto session = std::make_unique<SqliteConnection>(database);
        session->keepToItself();
        session->endLog();
        return session;
    } catch (const TransactionHindered &) {
        throw MaintenanceFailed("Another program uses the database " + database.string() +
                                "; end that first.");
    } catch (const TransactionFailed &) { // damaged: it is kept as it is
        keepLog(database, keptAs);
        return nullptr;
    }
}

} // namespace

Restoration::Restoration(std::filesystem::path database, const std::filesystem::path &copy)
    : m_database(std::move(database)), m_beside(m_database.string() + ".restoring"),
      m_alone(m_database, UseLock::Kind::Alone), m_unfinished(m_beside)
{
    std::error_code ignored; // not there
    if (std::filesystem::equivalent(copy, m_database, ignored))
        throw MaintenanceFailed("The copy is the database itself.");
    removeDatabase(m_beside); // of one that was killed
    copyWithLog(copy, m_beside);
    try {
        m_readied = openReadied(m_beside, copy);
        raiseIds();
    } catch (const TransactionHindered &) {
        throw MaintenanceFailed("Another program uses the database " + m_database.string() +
                                "; end that first.");
    } catch (const TransactionFailed &error) {
        throw MaintenanceFailed("The copy " + copy.string() + " cannot be restored: " + error.what() + ".");
    } catch (const CannotOpen &error) {
        throw MaintenanceFailed("The copy " + copy.string() + " cannot be restored. " + error.what());
    }
}

Restoration::~Restoration() = default;

void Restoration::raiseIds()
{
    const Reaches replaced = reachesOf(m_database);
    m_readied->execute("BEGIN IMMEDIATE");
    for (const auto &[accountId, reach] : reachesOf(*m_readied)) {
        const Reach beyond = raised(reach, replaced, accountId);
        m_readied->change("UPDATE account SET next_set_id = $1, next_goal_id = $2, version = $3, changes = $4"
                          " WHERE account_id = $5",
                          beyond.nextSetId, beyond.nextGoalId, beyond.version, beyond.changes, accountId);
    }
    m_readied->execute("COMMIT");
}

std::optional<std::filesystem::path> Restoration::put(std::time_t now)
{
    m_readied.reset(); // written, and on disk
    const std::filesystem::path keptAs =
        freeName(m_database.string() + ".before-restore-" + timeForNames(now));
    if (!std::filesystem::exists(m_database)) {
        auto keptLog = keepLog(m_database, keptAs);
        putInPlace(m_beside, m_database);
        return keptLog;
    }
    const auto outside = closed(m_database, keptAs);
    giveToOwnerOf(m_database, m_beside);
    if (::link(m_database.c_str(), keptAs.c_str()) != 0)
        throw MaintenanceFailed("The database cannot be kept as " + keptAs.string() + ": " +
                                std::generic_category().message(errno) + ".");
    putInPlace(m_beside, m_database);
    return keptAs;
}

} // namespace tarvex::store
