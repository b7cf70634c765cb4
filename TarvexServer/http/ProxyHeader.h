#pragma once

#include <boost/asio/ip/address.hpp>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tarvex::http {

/// What a proxy says at the beginning of a connection: the PROXY protocol, versions 1 and 2 (HAProxy's
/// proxy-protocol.txt, sections 2.1 and 2.2).
struct ProxyHeader
{
    enum class State { Incomplete, Malformed, Whole };

    State state = State::Malformed;
    std::size_t size = 0; ///< in bytes, once it is whole
    /// Who connected to the proxy; nothing if that was the proxy itself, or not by TCP.
    std::optional<boost::asio::ip::address> source;
};

/// Reads it from the first bytes of a connection.
ProxyHeader readProxyHeader(std::string_view bytes);

} // namespace tarvex::http
