#include "Proxies.h"

#include "PeerAddress.h"

#include <algorithm>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <charconv>
#include <string>

namespace tarvex::http {

namespace ip = boost::asio::ip;

namespace {

constexpr unsigned short mappedBits = 96; // before an address of version 4

ip::address_v6 asVersion6(const ip::address &address)
{
    return address.is_v4() ? ip::make_address_v6(ip::v4_mapped, address.to_v4()) : address.to_v6();
}

/// An element of the field, of which some proxies add the port.
std::string withoutPort(std::string element)
{
    boost::trim(element);
    if (element.starts_with('['))
        return element.substr(1, element.find(']') - 1);
    const bool hasPort = std::count(element.begin(), element.end(), ':') == 1;
    return hasPort ? element.substr(0, element.find(':')) : element;
}

} // namespace

bool Proxies::isTrusted(const ip::address &address) const
{
    return std::any_of(trusted.begin(), trusted.end(), [&](const ip::network_v6 &network) {
        return ip::network_v6(asVersion6(address), network.prefix_length()).canonical() == network;
    });
}

std::optional<ip::address> Proxies::forwardedAddress(std::string_view values) const
{
    std::vector<std::string> elements;
    boost::split(elements, values, [](char character) { return character == ','; });
    return elements.size() < hops ? std::nullopt : readAddress(withoutPort(elements[elements.size() - hops]));
}

std::optional<ip::network_v6> readNetwork(std::string_view text)
{
    const auto slash = std::min(text.find('/'), text.size());
    const auto address = readAddress(std::string(text.substr(0, slash)));
    if (!address)
        return {};
    const int most = address->is_v4() ? 32 : 128;
    int length = most;
    if (slash < text.size()) {
        const char *end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + slash + 1, end, length);
        if (error != std::errc() || stop != end || length < 0 || length > most)
            return {};
    }
    const int bits = length + (address->is_v4() ? mappedBits : 0);
    return ip::network_v6(asVersion6(*address), static_cast<unsigned short>(bits)).canonical();
}

} // namespace tarvex::http
