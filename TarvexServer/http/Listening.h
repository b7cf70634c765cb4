#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace tarvex::http {

/// The address cannot be listened on; what() is one sentence for whoever starts the server.
class CannotListen : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The first address of that name. Throws CannotListen.
boost::asio::ip::tcp::endpoint endpointOf(boost::asio::io_context &io, const std::string &host,
                                          std::uint16_t port);

/// Has the acceptor listen there, under which name it was asked for. Throws CannotListen.
template<class Acceptor>
void listen(Acceptor &acceptor, const boost::asio::ip::tcp::endpoint &endpoint, const std::string &host)
{
    namespace asio = boost::asio;
    try {
        acceptor.open(endpoint.protocol());
        acceptor.set_option(asio::socket_base::reuse_address(true));
        acceptor.bind(endpoint);
        acceptor.listen(asio::socket_base::max_listen_connections);
    } catch (const boost::system::system_error &error) {
        throw CannotListen("The address " + host + ":" + std::to_string(endpoint.port()) +
                           " cannot be listened on: " + error.code().message() + ".");
    }
}

} // namespace tarvex::http
