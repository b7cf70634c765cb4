#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <vector>

namespace tarvex::store {

/// What a copy holds.
struct Copied
{
    std::int64_t accounts = 0;
    std::uintmax_t bytes = 0;
};

/// Copies a database as it is at this moment, whoever uses it meanwhile: it is read in small steps with such
/// pauses between them. The copy is one file for its owner alone. It is written beside the target and takes
/// its place only once it is on disk and found whole: until then what the target was before is there. Throws
/// MaintenanceFailed or CannotOpen.
Copied copyDatabase(const std::filesystem::path &file, const std::filesystem::path &target,
                    std::chrono::milliseconds pause);

/// Throws MaintenanceFailed if a file is there that is no copy of a database of ours, but the database
/// itself, another one that is served or something else.
void requireFreeOrCopy(const std::filesystem::path &target, const std::filesystem::path &database);

/// The name, in that folder, of a copy of the database made at that time, which is in seconds since 1970:
/// wheel-20261231-235959.db, in UTC.
std::filesystem::path datedCopy(const std::filesystem::path &folder, const std::filesystem::path &file,
                                std::time_t time);

/// Removes all copies of the database that have such names in the folder but so many of the newest, with
/// their secrets; returns the names. A file that is no database of ours stays, whatever its name.
std::vector<std::filesystem::path> removeOldCopies(const std::filesystem::path &folder,
                                                   const std::filesystem::path &file, std::size_t kept);

/// A time as it stands in file names: 20261231-235959, in UTC.
std::string timeForNames(std::time_t time);

} // namespace tarvex::store
