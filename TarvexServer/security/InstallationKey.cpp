#include "InstallationKey.h"

#include "Sodium.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace tarvex::security {

namespace {

[[noreturn]] void fail(const std::filesystem::path &file, const std::string &reason)
{
    throw std::runtime_error("The secret of the database, " + file.string() + ", " + reason + ".");
}

/// Writes the digits where nobody has written before. They are there in full or not at all.
void writeNew(const std::filesystem::path &file, const std::string &digits)
{
    std::string beside = file.string() + ".XXXXXX";
    const int descriptor = ::mkstemp(beside.data()); // readable for its owner only
    const std::string line = digits + "\n";
    const bool isWritten =
        descriptor >= 0 &&
        ::write(descriptor, line.data(), line.size()) == static_cast<ssize_t>(line.size()) &&
        ::fsync(descriptor) == 0 && (::link(beside.c_str(), file.c_str()) == 0 || errno == EEXIST);
    const int error = errno;
    if (descriptor >= 0) {
        ::close(descriptor);
        ::unlink(beside.c_str());
    }
    if (!isWritten)
        fail(file, "cannot be written: " + std::generic_category().message(error));
    const int folder = ::open(std::filesystem::absolute(file).parent_path().c_str(), O_RDONLY | O_CLOEXEC);
    ::fsync(folder); // the name must last as well
    ::close(folder);
}

} // namespace

KeyedHash::Key installationKey(const std::filesystem::path &file)
{
    startLibrary();
    KeyedHash::Key key{};
    if (!std::filesystem::exists(file)) {
        randombytes_buf(key.data(), key.size());
        writeNew(file, hexadecimal(key));
    }
    std::ifstream stream(file);
    std::string digits;
    if (!std::getline(stream, digits))
        fail(file, "cannot be read");
    std::size_t size = 0;
    const int result =
        sodium_hex2bin(key.data(), key.size(), digits.data(), digits.size(), nullptr, &size, nullptr);
    if (result != 0 || size != key.size())
        fail(file, "is damaged");
    return key;
}

} // namespace tarvex::security
