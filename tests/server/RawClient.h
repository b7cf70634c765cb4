#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <string>

/// One connection to a server on this machine, on which a test says exactly the bytes it wants to.
class RawClient
{
public:
    using Response = boost::beast::http::response<boost::beast::http::string_body>;

    explicit RawClient(std::uint16_t port)
    {
        m_socket.connect({boost::asio::ip::make_address("127.0.0.1"), port});
    }

    void send(const std::string &bytes) { boost::asio::write(m_socket, boost::asio::buffer(bytes)); }
    void endSending() { m_socket.shutdown(boost::asio::ip::tcp::socket::shutdown_send); }

    /// The next response; throws if the connection ends before it does.
    Response read()
    {
        boost::beast::http::response_parser<boost::beast::http::string_body> parser;
        boost::beast::http::read(m_socket, m_buffer, parser);
        return parser.release();
    }

    /// Waits until the server closes the connection; false if it says anything before.
    bool isClosedSilently()
    {
        boost::beast::error_code error;
        char byte = 0;
        return m_socket.read_some(boost::asio::buffer(&byte, 1), error) == 0 && error;
    }

    /// Sends a request of the protocol and returns its answer.
    Response post(const std::string &body, const std::string &fields = "")
    {
        send(request(body, fields));
        return read();
    }

    Response get(const std::string &target)
    {
        send("GET " + target + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
        return read();
    }

    /// `fields` are whole lines of its head, with their line ends.
    static std::string request(const std::string &body, const std::string &fields = "")
    {
        return "POST /tarvex/ HTTP/1.1\r\n" + fields +
               "Host: localhost\r\nContent-Length: " + std::to_string(body.size()) +
               "\r\nContent-Field: application/x-www-form-urlencoded\r\n\r\n" + body;
    }

private:
    boost::asio::io_context m_io;
    boost::asio::ip::tcp::socket m_socket{m_io};
    boost::beast::flat_buffer m_buffer;
};
