#include "KeyedHash.h"

#include "Sodium.h"

namespace tarvex::security {

std::string KeyedHash::operator()(std::initializer_list<std::string_view> parts) const
{
    crypto_generichash_state state;
    // The library takes unsigned bytes; a char may be read as one.
    const auto add = [&](std::string_view text) {
        crypto_generichash_update(&state, reinterpret_cast<const unsigned char *>(text.data()), text.size());
    };
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    crypto_generichash_init(&state, m_key.data(), m_key.size(), hash.size());
    for (const std::string_view part : parts) {
        add(std::to_string(part.size()) + ":");
        add(part);
    }
    crypto_generichash_final(&state, hash.data(), hash.size());
    return hexadecimal(hash);
}

} // namespace tarvex::security
