#pragma once

#include "PrivateFile.h"
#include "SqliteConnection.h"
#include "UseLock.h"

#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>

namespace tarvex::store {

/// A copy on its way to the place of a database. Whenever this ends, or the process is killed, the place
/// holds the old database or the new one, whole. Nobody else may use the database meanwhile. All of it throws
/// CannotOpen or MaintenanceFailed.
class Restoration
{
public:
    /// Readies the copy beside the database: finds it whole, brings it to the newest schema, and raises ids,
    /// versions and changes of its accounts beyond what clients of the replaced database may know.
    Restoration(std::filesystem::path database, const std::filesystem::path &copy);
    ~Restoration();
    Restoration(const Restoration &) = delete;
    Restoration &operator=(const Restoration &) = delete;

    /// The readied database.
    SqliteConnection &readied() { return *m_readied; }

    /// Puts it in the place of the database and returns the name under which that is kept, which tells the
    /// time, in seconds since 1970; nothing if there was none. To be called once.
    std::optional<std::filesystem::path> put(std::time_t now);

private:
    void raiseIds();

    std::filesystem::path m_database;
    std::filesystem::path m_beside;
    UseLock m_alone;
    UnfinishedFile m_unfinished;
    std::unique_ptr<SqliteConnection> m_readied;
};

} // namespace tarvex::store
