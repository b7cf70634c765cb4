#include "KeyedHash.h"

#include <sodium.h>
#include <stdexcept>

namespace tarvex::security {

KeyedHash::KeyedHash()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
    randombytes_buf(m_key.data(), m_key.size());
}

std::string KeyedHash::operator()(std::initializer_list<std::string_view> parts) const
{
    std::string text;
    for (const std::string_view part : parts)
        text.append(std::to_string(part.size())).append(":").append(part);
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    // The library takes unsigned bytes; a char may be read as one.
    crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char *>(text.data()),
                       text.size(), m_key.data(), m_key.size());
    return {hash.begin(), hash.end()};
}

} // namespace tarvex::security
