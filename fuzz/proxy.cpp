// What a proxy says. A header is whole when it is there and not before, whatever follows it.

#include "Fuzz.h"
#include "Proxies.h"
#include "ProxyHeader.h"

using namespace tarvex;
using State = http::ProxyHeader::State;

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string_view text = viewOf(bytes, size);
    const http::ProxyHeader header = http::readProxyHeader(text);
    if (header.state == State::Whole) {
        require(header.size <= size, "a header is part of what came");
        require(http::readProxyHeader(text.substr(0, header.size)).state == State::Whole,
                "it needs nothing else");
        require(http::readProxyHeader(text.substr(0, header.size - 1)).state == State::Incomplete,
                "without its end it is not there");
    } else {
        require(!header.source, "only a whole header names anybody");
    }
    http::Proxies proxies;
    proxies.hops = 1 + size % 3;
    proxies.forwardedAddress(text);
    http::readNetwork(text);
    return 0;
}
