#pragma once

#include <filesystem>
#include <utility>

namespace tarvex::store {

// Files that nobody but their owner can read. What cannot be done throws MaintenanceFailed.

/// Makes an empty file, or takes one that is there from everybody else.
void makePrivateFile(const std::filesystem::path &file);

/// Copies the bytes of a file and has them on disk; what the target held is gone.
void copyPrivately(const std::filesystem::path &from, const std::filesystem::path &target);

/// Gives a file that is on disk another name, in the place of whatever has it, and has that on disk as well.
void putInPlace(const std::filesystem::path &file, const std::filesystem::path &name);

/// Gives a file to whom another one belongs, as far as that is allowed and needed: the administrator's work
/// must not lock out the service.
void giveToOwnerOf(const std::filesystem::path &other, const std::filesystem::path &file);

/// Removes a database file and what the engine has beside it, as far as they are there.
void removeDatabase(const std::filesystem::path &file);

/// A database file that is being written, and gone with this unless it got another name before.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(std::filesystem::path file) : m_file(std::move(file)) {}
    ~UnfinishedFile() { removeDatabase(m_file); }
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;

private:
    std::filesystem::path m_file;
};

} // namespace tarvex::store
