#include "PeerMark.h"

#include <sodium.h>
#include <stdexcept>

namespace tarvex::security {

namespace {

constexpr std::size_t markBytes = 4;

/// The first bytes, in hexadecimal digits.
std::string markOf(const unsigned char *bytes)
{
    std::array<char, 2 * markBytes + 1> digits{};
    return sodium_bin2hex(digits.data(), digits.size(), bytes, markBytes);
}

void startLibrary()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
}

} // namespace

PeerMark::PeerMark()
{
    static_assert(sizeof(m_key) == crypto_shorthash_KEYBYTES);
    startLibrary();
    randombytes_buf(m_key.data(), m_key.size());
}

std::string PeerMark::operator()(std::string_view peer) const
{
    std::array<unsigned char, crypto_shorthash_BYTES> hash{};
    // The library takes unsigned bytes; a char may be read as one.
    crypto_shorthash(hash.data(), reinterpret_cast<const unsigned char *>(peer.data()), peer.size(),
                     m_key.data());
    return markOf(hash.data());
}

std::string randomMark()
{
    std::array<unsigned char, markBytes> bytes{};
    startLibrary();
    randombytes_buf(bytes.data(), bytes.size());
    return markOf(bytes.data());
}

} // namespace tarvex::security
