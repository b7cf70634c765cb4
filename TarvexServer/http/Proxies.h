#pragma once

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/network_v6.hpp>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tarvex::http {

/// Whose word on the addresses of others is taken, and how they give it.
struct Proxies
{
    enum class Source {
        ForwardedFor,  ///< the field X-Forwarded-For of each request
        ProxyProtocol, ///< a header at the beginning of each connection, see ProxyHeader
    };

    std::vector<boost::asio::ip::network_v6> trusted; ///< none without a proxy
    Source source = Source::ForwardedFor;
    std::size_t hops = 1; ///< proxies between here and the clients, each of which adds to the field

    bool isTrusted(const boost::asio::ip::address &address) const;
    /// The address that so many hops before the end of a field's values stands; nothing if it cannot be read.
    std::optional<boost::asio::ip::address> forwardedAddress(std::string_view values) const;
};

/// A network as it is written, "10.0.0.0/8" or one address; those of version 4 as they are mapped into
/// version
/// 6. Nothing if it cannot be read.
std::optional<boost::asio::ip::network_v6> readNetwork(std::string_view text);

} // namespace tarvex::http
