#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tarvex::security {

/// Turns secrets into keys that can be held and compared: a hash (BLAKE2b, RFC 7693) under a key of its own,
/// so that neither can a caller steer it nor a reader of the memory or the database turn it back.
class KeyedHash
{
public:
    using Key = std::array<unsigned char, 32>;

    explicit KeyedHash(const Key &key) : m_key(key) {}

    /// The hash of the parts, which also depends on where one ends and the next begins; in hexadecimal
    /// digits.
    std::string operator()(std::initializer_list<std::string_view> parts) const;

private:
    Key m_key{};
};

} // namespace tarvex::security
