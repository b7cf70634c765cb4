#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tarvex::store {

class SqliteConnection;

/// What the engine finds wrong with the file and with what its rows refer to, a sentence each; not more than
/// a screen of them. Reads all of it.
std::vector<std::string> damages(SqliteConnection &session);

/// What there is to say about a database.
struct Examination
{
    std::int64_t schema = 0;
    std::int64_t newestSchema = 0;   ///< that this program knows; the counts of older ones are not looked at
    std::vector<std::string> faults; ///< that are there, or are still there
    std::int64_t repaired = 0;
};

/// Looks at all of a database, which others may use meanwhile, and repairs its counts first if that is
/// wanted. Throws CannotOpen, or MaintenanceFailed while others hold it up.
Examination examine(const std::filesystem::path &file, bool repairs);

} // namespace tarvex::store
