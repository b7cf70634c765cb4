#include "ListenAddress.h"

#include <charconv>

namespace tarvex::app {

std::optional<ListenAddress> listenAddress(const std::string &text)
{
    const auto colon = text.rfind(':');
    if (colon == std::string::npos)
        return {};
    ListenAddress address{.host = text.substr(0, colon)};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, address.port);
    if (error != std::errc() || stop != end)
        return {};
    const bool isBracketed = address.host.starts_with('[') && address.host.ends_with(']');
    if (isBracketed)
        address.host = address.host.substr(1, address.host.size() - 2);
    if (address.host.empty() || (!isBracketed && address.host.find(':') != std::string::npos))
        return {};
    return address;
}

std::string hostAndPort(const std::string &host, std::uint16_t port)
{
    const bool isIpv6 = host.find(':') != std::string::npos;
    return (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

} // namespace tarvex::app
