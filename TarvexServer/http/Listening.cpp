#include "Listening.h"

namespace tarvex::http {

namespace asio = boost::asio;

asio::ip::tcp::endpoint endpointOf(asio::io_context &io, const std::string &host, std::uint16_t port)
{
    boost::system::error_code error;
    asio::ip::tcp::resolver resolver(io);
    const auto found =
        resolver.resolve(host, std::to_string(port), asio::ip::tcp::resolver::numeric_service, error);
    if (error)
        throw CannotListen("The address " + host + ":" + std::to_string(port) +
                           " cannot be found: " + error.message() + ".");
    return found.begin()->endpoint();
}

} // namespace tarvex::http
