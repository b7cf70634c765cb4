#include "KeyedHash.h"

#include <sodium.h>
#include <stdexcept>

namespace tarvex::security {

namespace {

void update(crypto_generichash_state &state, std::string_view bytes)
{
    // The library takes unsigned bytes; a char may be read as one.
    crypto_generichash_update(&state, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
}

} // namespace

KeyedHash::KeyedHash()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
    randombytes_buf(m_key.data(), m_key.size());
}

std::string KeyedHash::operator()(std::initializer_list<std::string_view> parts) const
{
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    crypto_generichash_state state{};
    crypto_generichash_init(&state, m_key.data(), m_key.size(), hash.size());
    for (const std::string_view part : parts) {
        update(state, std::to_string(part.size()) + ":");
        update(state, part);
    }
    crypto_generichash_final(&state, hash.data(), hash.size());
    return {hash.begin(), hash.end()};
}

} // namespace tarvex::security
