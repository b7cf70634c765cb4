#include "Compact.h"

#include "SqliteFile.h"
#include "StoreError.h"
#include "UseLock.h"

#include <cstdlib>

namespace tarvex::store {

namespace {

std::uintmax_t bytesOf(const std::filesystem::path &file)
{
    std::uintmax_t sum = 0;
    for (const char *suffix : {"", "-wal"}) {
        std::error_code error;
        const std::uintmax_t size = std::filesystem::file_size(file.string() + suffix, error);
        sum += error ? 0 : size;
    }
    return sum;
}

/// The new database is written twice, into a file of its own and into the log, before it replaces the old.
void requireRoomToCompact(SqliteConnection &session, const std::filesystem::path &folder)
{
    constexpr std::uintmax_t copies = 2;
    constexpr std::uintmax_t spare = 1024UL * 1024;
    constexpr std::uintmax_t mebibyte = 1024UL * 1024;
    const std::uintmax_t needed = copies * static_cast<std::uintmax_t>(session.size()) + spare;
    const std::uintmax_t available = std::filesystem::space(folder).available;
    if (available < needed)
        throw MaintenanceFailed("There is no room to compact the database: that takes " +
                                std::to_string(needed / mebibyte + 1) + " MiB meanwhile, and the disk has " +
                                std::to_string(available / mebibyte) + " MiB.");
}

} // namespace

std::uintmax_t compactDatabase(const std::filesystem::path &file)
{
    if (!std::filesystem::exists(file))
        openAsItIs(file); // which says so
    const UseLock alone(file, UseLock::Kind::Alone);
    const std::uintmax_t before = bytesOf(file);
    const std::filesystem::path folder = std::filesystem::absolute(file).parent_path();
    ::setenv("SQLITE_TMPDIR", folder.c_str(), /*overwrite=*/0); // the disk that was asked for room
    try {
        const auto session = openAsItIs(file);
        requireRoomToCompact(*session, folder);
        session->execute("VACUUM");
        session->execute("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const TransactionHindered &) {
        throw MaintenanceFailed("Another program uses the database " + file.string() + "; end that first.");
    } catch (const TransactionFailed &error) {
        throw MaintenanceFailed("The database " + file.string() + " cannot be compacted: " + error.what() +
                                ".");
    }
    const std::uintmax_t after = bytesOf(file);
    return before > after ? before - after : 0;
}

} // namespace tarvex::store
