#include "PeerMark.h"

#include "RandomToken.h"
#include "Sodium.h"

namespace tarvex::security {

constexpr std::size_t markDigits = 8;

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
    return hexadecimal(hash).substr(0, markDigits);
}

std::string randomMark()
{
    return randomToken().substr(0, markDigits);
}

} // namespace tarvex::security
