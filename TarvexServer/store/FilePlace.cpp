#include "FilePlace.h"

#include "StoreError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/sysmacros.h>
#endif

namespace tarvex::store {

FilePlace::FilePlace(const std::filesystem::path &file)
{
    const std::filesystem::path whole = std::filesystem::absolute(file);
    for (const auto &path : {whole, std::filesystem::path(whole.string() + "-wal")})
        m_files.emplace_back(path, identityOf(path));
}

void FilePlace::check() const
{
    for (const auto &[path, identity] : m_files) {
        if (identityOf(path) != identity)
            throw TransactionFailed("a file of the database was deleted or replaced");
    }
    if (::access(m_files.front().first.parent_path().c_str(), W_OK) != 0)
        throw TransactionFailed("the folder of the database cannot be written to");
}

FilePlace::Identity FilePlace::identityOf(const std::filesystem::path &file)
{
#ifdef __linux__
    // Not its times: once asked for, Linux notes them more exactly, and the next commit waits for that too.
    struct statx found = {};
    if (::statx(AT_FDCWD, file.c_str(), AT_STATX_SYNC_AS_STAT, STATX_INO, &found) != 0)
        return {};
    return {makedev(found.stx_dev_major, found.stx_dev_minor), found.stx_ino};
#else
    struct stat found = {};
    return ::stat(file.c_str(), &found) == 0 ? Identity(found.st_dev, found.st_ino) : Identity();
#endif
}

FolderLock::FolderLock(const std::filesystem::path &folder)
    : m_descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (m_descriptor >= 0)
        ::flock(m_descriptor, LOCK_EX);
}

FolderLock::~FolderLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

} // namespace tarvex::store
