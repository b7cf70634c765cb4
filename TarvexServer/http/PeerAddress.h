#pragma once

#include <boost/asio/ip/address.hpp>
#include <string>

namespace tarvex::http {

/// Under which name the limits per address count a peer: its IPv4 address or the first 64 bits of its IPv6
/// one, which is what one subscriber is given. Empty for the machine itself, unless that has limits too.
std::string peerName(const boost::asio::ip::address &address, bool isMachineLimited);

} // namespace tarvex::http
