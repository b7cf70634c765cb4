#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tarvex::security {

/// Names a peer so that whoever reads a log can tell which lines come from one, and not from whom: eight
/// digits of a hash (SipHash) under a random key that no other process has and that ends with this one.
class PeerMark
{
public:
    PeerMark();
    std::string operator()(std::string_view peer) const;

private:
    std::array<unsigned char, 16> m_key{};
};

/// Eight hexadecimal digits drawn at random.
std::string randomMark();

} // namespace tarvex::security
