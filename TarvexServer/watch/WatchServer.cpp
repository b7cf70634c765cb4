#include "WatchServer.h"

#include "Listening.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <exception>
#include <memory>
#include <utility>

namespace tarvex::watch {

namespace asio = boost::asio;
namespace beast = boost::beast::http;
using boost::beast::error_code;

namespace {

constexpr std::size_t mostConnections = 8;
constexpr std::chrono::seconds connectionTime{5};
constexpr std::chrono::milliseconds pauseAfterFault{500};
constexpr std::uint32_t largestHead = 4096;

/// One connection with its one request; keeps itself alive.
class Watcher : public std::enable_shared_from_this<Watcher>
{
public:
    Watcher(asio::ip::tcp::socket socket, const WatchServer::Answer &answer, std::size_t &open)
        : m_stream(std::move(socket)), m_answer(answer), m_open(open)
    {
        ++m_open;
    }
    ~Watcher() { --m_open; }
    Watcher(const Watcher &) = delete;
    Watcher &operator=(const Watcher &) = delete;

    void start()
    {
        m_stream.expires_after(connectionTime);
        m_parser.header_limit(largestHead);
        m_parser.body_limit(0);
        beast::async_read(m_stream, m_buffer, m_parser,
                          [self = shared_from_this()](error_code error, std::size_t) {
                              if (!error)
                                  self->answer();
                          });
    }

private:
    void answer()
    {
        const auto &request = m_parser.get();
        const std::string_view target(request.target().data(), request.target().size());
        const Reply reply = request.method() == beast::verb::get
                                ? m_answer(target)
                                : Reply{.status = 405, .body = "Only GET is answered here.\n"};
        m_response.result(reply.status);
        m_response.set(beast::field::content_type, reply.contentType);
        m_response.set(beast::field::cache_control, "no-store");
        m_response.keep_alive(false);
        m_response.body() = reply.body;
        m_response.prepare_payload();
        beast::async_write(m_stream, m_response, [self = shared_from_this()](error_code, std::size_t) {
            error_code ignored;
            self->m_stream.socket().shutdown(asio::socket_base::shutdown_both, ignored);
        });
    }

    boost::beast::tcp_stream m_stream;
    const WatchServer::Answer &m_answer;
    std::size_t &m_open;
    boost::beast::flat_buffer m_buffer{largestHead};
    beast::request_parser<beast::empty_body> m_parser;
    beast::response<beast::string_body> m_response;
};

} // namespace

WatchServer::WatchServer(const std::string &host, std::uint16_t port, bool areOthersAllowed, Answer answer)
    : m_answer(std::move(answer))
{
    const asio::ip::tcp::endpoint endpoint = http::endpointOf(m_io, host, port);
    if (!endpoint.address().is_loopback() && !areOthersAllowed)
        throw http::CannotListen("Whoever watches must do so from this machine, unless --watch-from-anywhere"
                                 " is given.");
    http::listen(m_acceptor, endpoint, host);
    accept();
    m_thread = std::thread([this] { run(); });
}

WatchServer::~WatchServer()
{
    m_io.stop();
    m_thread.join();
}

void WatchServer::accept()
{
    m_acceptor.async_accept([this](error_code error, asio::ip::tcp::socket socket) {
        if (error) { // out of descriptors, most likely
            m_pause.expires_after(pauseAfterFault);
            m_pause.async_wait([this](error_code) { accept(); });
            return;
        }
        accept();
        if (m_open < mostConnections)
            std::make_shared<Watcher>(std::move(socket), m_answer, m_open)->start();
    });
}

void WatchServer::run()
{
    while (!m_io.stopped()) {
        try {
            m_io.run();
        } catch (const std::exception &) { // no memory: one connection had no luck
        }
    }
}

} // namespace tarvex::watch
