#include "PrivateFile.h"

#include "StoreError.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarvex::store {

namespace {

[[noreturn]] void fail(const std::filesystem::path &file, const char *what, int error)
{
    throw MaintenanceFailed("The file " + file.string() + " cannot be " + what + ": " +
                            std::generic_category().message(error) + ".");
}

/// An open file, closed with it.
struct OpenFile
{
    OpenFile(const std::filesystem::path &file, int flags, const char *purpose)
        : descriptor(::open(file.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR))
    {
        if (descriptor < 0)
            fail(file, purpose, errno);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() { ::close(descriptor); }

    int descriptor;
};

OpenFile openPrivately(const std::filesystem::path &file, int flags)
{
    return {file, O_WRONLY | O_CREAT | flags, "written"};
}

/// Has the names in the folder of a file on disk.
void syncFolderOf(const std::filesystem::path &file)
{
    const std::filesystem::path folder = std::filesystem::absolute(file).parent_path();
    const OpenFile opened(folder, O_RDONLY | O_DIRECTORY, "read");
    ::fsync(opened.descriptor); // some file systems have no such thing, and need none
}

} // namespace

void makePrivateFile(const std::filesystem::path &file)
{
    const OpenFile made = openPrivately(file, /*flags=*/0);
    if (::fchmod(made.descriptor, S_IRUSR | S_IWUSR) != 0)
        fail(file, "made private", errno);
}

void copyPrivately(const std::filesystem::path &from, const std::filesystem::path &target)
{
    constexpr std::size_t bytesAtOnce = 64UL * 1024;
    const OpenFile source(from, O_RDONLY, "read");
    makePrivateFile(target);
    const OpenFile copy = openPrivately(target, O_TRUNC);
    std::array<char, bytesAtOnce> bytes{};
    for (;;) {
        const ssize_t count = ::read(source.descriptor, bytes.data(), bytes.size());
        if (count < 0)
            fail(from, "read", errno);
        if (count == 0)
            break;
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                ::write(copy.descriptor, bytes.data() + done, static_cast<std::size_t>(count - done));
            if (written < 0)
                fail(target, "written", errno);
            done += written;
        }
    }
    if (::fsync(copy.descriptor) != 0)
        fail(target, "written", errno);
}

void putInPlace(const std::filesystem::path &file, const std::filesystem::path &name)
{
    if (::rename(file.c_str(), name.c_str()) != 0)
        fail(name, "written", errno);
    syncFolderOf(name);
}

void giveToOwnerOf(const std::filesystem::path &other, const std::filesystem::path &file)
{
    struct stat owned = {};
    if (::geteuid() != 0 || ::stat(other.c_str(), &owned) != 0)
        return;
    if (::chown(file.c_str(), owned.st_uid, owned.st_gid) != 0)
        fail(file, "given to its owner", errno);
}

void removeDatabase(const std::filesystem::path &file)
{
    for (const char *suffix : {"", "-journal", "-wal", "-shm"}) {
        std::error_code ignored; // not there
        std::filesystem::remove(file.string() + suffix, ignored);
    }
}

} // namespace tarvex::store
