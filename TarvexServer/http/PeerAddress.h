#pragma once

#include <boost/asio/ip/address.hpp>
#include <optional>
#include <string>

namespace tarvex::http {

/// Under which name the limits per address count a peer: its IPv4 address or the first 64 bits of its IPv6
/// one, which is what one subscriber is given. Empty for the machine itself, unless that has limits too.
std::string peerName(const boost::asio::ip::address &address, bool isMachineLimited);

/// An address as it is written; nothing if it cannot be read.
std::optional<boost::asio::ip::address> readAddress(const std::string &text);

} // namespace tarvex::http
