#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarvex::app {

/// Where the server listens; the host is an address or a name, an IPv6 address without its brackets.
struct ListenAddress
{
    std::string host;
    std::uint16_t port = 0;
};

/// Reads HOST:PORT or [IPV6]:PORT.
std::optional<ListenAddress> listenAddress(const std::string &text);

/// That host and port as an address to listen on is written.
std::string hostAndPort(const std::string &host, std::uint16_t port);

} // namespace tarvex::app
