#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <vector>

namespace tarvex::requests {

/// An installation as files: its database and the secret that its logins are kept under. A copy of both is a
/// file and, beside it, the same name with ".secret".
struct InstallationFiles
{
    std::filesystem::path database;
    std::filesystem::path secret;
};

struct Backup
{
    std::filesystem::path file;
    std::int64_t accounts = 0;
    std::uintmax_t bytes = 0;
    bool hasSecret = false; ///< there may be none to copy
    std::vector<std::filesystem::path> removed;
};

/// Copies an installation in use to a file or, under a name with the time, into a folder; there, all but so
/// many of the newest copies are removed if that is wanted. What was there before stays until all is written.
/// `now` is in seconds since 1970. Throws std::runtime_error with a sentence.
Backup backUp(const InstallationFiles &installation, const std::filesystem::path &target,
              std::optional<std::size_t> kept, std::time_t now);

struct Restored
{
    std::int64_t accounts = 0;
    std::optional<std::filesystem::path> replaced; ///< where what was there before is now, if anything was
    bool tookSecret = false;                       ///< from beside the copy, since there was none
};

/// Puts a copy in the place of the database, which nobody may use meanwhile, and where the secret is missing
/// that of the copy in its place. `now` is in seconds since 1970. Throws std::runtime_error with a sentence.
Restored restore(const InstallationFiles &installation, const std::filesystem::path &copy, std::time_t now);

} // namespace tarvex::requests
