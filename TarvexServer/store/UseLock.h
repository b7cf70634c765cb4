#pragma once

#include <filesystem>

namespace tarvex::store {

/// Tells other processes that a database is in use, by a lock on a file beside it that stays there for ever;
/// the lock itself goes with the process, however that ends. Throws CannotOpen if others stand against it.
class UseLock
{
public:
    enum class Kind {
        Shared, ///< with others that use it
        Alone,  ///< for work on the file as a whole
    };

    UseLock(const std::filesystem::path &database, Kind kind);
    ~UseLock();
    UseLock(const UseLock &) = delete;
    UseLock &operator=(const UseLock &) = delete;

    /// The file that carries the lock of a database.
    static std::filesystem::path fileOf(const std::filesystem::path &database);

private:
    int m_descriptor;
};

} // namespace tarvex::store
