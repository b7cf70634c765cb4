#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tarvex::security {

/// Turns secrets into keys that can be held in memory and compared: a hash under a random key that the
/// process keeps for itself, so that neither can a caller steer it nor a reader of the memory turn it back.
class KeyedHash
{
public:
    KeyedHash();

    /// The hash of the parts, which also depends on where one ends and the next begins.
    std::string operator()(std::initializer_list<std::string_view> parts) const;

private:
    std::array<unsigned char, 32> m_key{};
};

} // namespace tarvex::security
