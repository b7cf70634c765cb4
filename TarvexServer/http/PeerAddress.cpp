#include "PeerAddress.h"

#include <algorithm>

namespace tarvex::http {

std::string peerName(const boost::asio::ip::address &address, bool isMachineLimited)
{
    using namespace boost::asio::ip;
    if (address.is_loopback() && !isMachineLimited)
        return "";
    if (address.is_v4())
        return address.to_string();
    const address_v6 v6 = address.to_v6();
    if (v6.is_v4_mapped())
        return peerName(make_address_v4(v4_mapped, v6), isMachineLimited);
    auto bytes = v6.to_bytes();
    std::fill(bytes.begin() + 8, bytes.end(), static_cast<unsigned char>(0));
    return make_address_v6(bytes).to_string() + "/64";
}

std::optional<boost::asio::ip::address> readAddress(const std::string &text)
{
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(text, error);
    return error ? std::nullopt : std::optional(address);
}

} // namespace tarvex::http
