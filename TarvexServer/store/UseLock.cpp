#include "UseLock.h"

#include "PrivateFile.h"
#include "StoreError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarvex::store {

UseLock::UseLock(const std::filesystem::path &database, Kind kind)
    : m_descriptor(::open(fileOf(database).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR))
{
    const bool isAlone = kind == Kind::Alone;
    if (m_descriptor >= 0)
        giveToOwnerOf(database, fileOf(database));
    if (m_descriptor >= 0 && ::flock(m_descriptor, (isAlone ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0)
        return;
    const int error = errno;
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (error == EWOULDBLOCK)
        throw CannotOpen("The database " + database.string() +
                         (isAlone ? " is in use by another process; stop that first."
                                  : " is being restored or compacted; try again once that is done."));
    throw CannotOpen("The lock of the database, " + fileOf(database).string() +
                     ", cannot be had: " + std::generic_category().message(error) + ".");
}

UseLock::~UseLock()
{
    ::close(m_descriptor);
}

std::filesystem::path UseLock::fileOf(const std::filesystem::path &database)
{
    return database.string() + ".lock";
}

} // namespace tarvex::store
