#include "ProxyHeader.h"

#include "PeerAddress.h"

#include <algorithm>
#include <boost/algorithm/string/split.hpp>
#include <string>
#include <vector>

namespace tarvex::http {

namespace {

using State = ProxyHeader::State;
using namespace std::string_view_literals;

constexpr std::string_view textMark = "PROXY "sv;
constexpr std::size_t longestText = 107; // with its line break
constexpr std::string_view binaryMark = "\r\n\r\n\0\r\nQUIT\n"sv;
constexpr std::size_t binaryFrame = 16; // the mark, version and command, family, length
constexpr std::size_t longestBinary = 4096;

ProxyHeader of(State state, std::size_t size = 0)
{
    return {.state = state, .size = size, .source = {}};
}

ProxyHeader readText(std::string_view bytes)
{
    const auto end = bytes.substr(0, longestText).find("\r\n");
    if (end == std::string_view::npos)
        return of(bytes.size() < longestText ? State::Incomplete : State::Malformed);
    std::vector<std::string> words;
    boost::split(words, bytes.substr(0, end), [](char character) { return character == ' '; });
    ProxyHeader header = of(State::Whole, end + 2);
    if (words[1] == "UNKNOWN")
        return header;
    const bool isFour = words[1] == "TCP4";
    if ((!isFour && words[1] != "TCP6") || words.size() != 6)
        return {};
    header.source = readAddress(words[2]);
    return header.source && header.source->is_v4() == isFour ? header : ProxyHeader();
}

template<class Address>
Address addressAt(std::string_view bytes)
{
    typename Address::bytes_type raw;
    std::copy_n(bytes.begin(), raw.size(), raw.begin());
    return Address(raw);
}

ProxyHeader readBinary(std::string_view bytes)
{
    if (bytes.size() < binaryFrame)
        return of(State::Incomplete);
    const auto byte = [bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const std::size_t size = binaryFrame + byte(14) * 256UL + byte(15);
    const bool isForItself = byte(12) == 0x20;
    if ((byte(12) != 0x21 && !isForItself) || size > longestBinary)
        return {};
    if (bytes.size() < size)
        return of(State::Incomplete);
    ProxyHeader header = of(State::Whole, size);
    const std::string_view addresses = bytes.substr(binaryFrame, size - binaryFrame);
    if (isForItself)
        return header;
    if (byte(13) == 0x11 && addresses.size() >= 12)
        header.source = addressAt<boost::asio::ip::address_v4>(addresses);
    else if (byte(13) == 0x21 && addresses.size() >= 36)
        header.source = addressAt<boost::asio::ip::address_v6>(addresses);
    else if (byte(13) == 0x11 || byte(13) == 0x21)
        return {};
    return header;
}

bool begins(std::string_view bytes, std::string_view mark)
{
    return bytes.substr(0, mark.size()) == mark.substr(0, bytes.size());
}

} // namespace

ProxyHeader readProxyHeader(std::string_view bytes)
{
    if (begins(bytes, textMark))
        return bytes.size() < textMark.size() ? of(State::Incomplete) : readText(bytes);
    return begins(bytes, binaryMark) ? readBinary(bytes) : ProxyHeader();
}

} // namespace tarvex::http
