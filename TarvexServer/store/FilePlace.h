#pragma once

#include <filesystem>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tarvex::store {

/// The files of an open database, by what they are rather than by their names.
class FilePlace
{
public:
    /// Remembers the file and its log, which must both be there.
    explicit FilePlace(const std::filesystem::path &file);

    /// Throws TransactionFailed unless both still stand where they stood and their folder takes files: what
    /// is written to a file that has lost its name is lost.
    void check() const;

private:
    using Identity = std::pair<dev_t, ino_t>;
    static Identity identityOf(const std::filesystem::path &file);

    std::vector<std::pair<std::filesystem::path, Identity>> m_files;
};

/// Lets one process at a time open or make a database in a folder: the engine alone would tell the others
/// that a new file is locked.
class FolderLock
{
public:
    /// Waits for whoever has it. Goes without where there is no such lock.
    explicit FolderLock(const std::filesystem::path &folder);
    ~FolderLock();
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

private:
    int m_descriptor;
};

} // namespace tarvex::store
