#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace tarvex::watch {

/// What is answered to whoever watches.
struct Reply
{
    unsigned status = 200;
    std::string body;
    std::string contentType = "text/plain; charset=utf-8";
};

/// A small server of its own for those who watch the service: on a thread of its own, a few connections at a
/// time, one request each and a few seconds for it, so that nobody holds up the service here.
class WatchServer
{
public:
    using Answer = std::function<Reply(std::string_view target)>;

    /// Listens at once and answers GETs from then on; port 0 takes a free one. Throws http::CannotListen,
    /// also for an address beyond this machine unless such are allowed.
    WatchServer(const std::string &host, std::uint16_t port, bool areOthersAllowed, Answer answer);
    ~WatchServer();
    WatchServer(const WatchServer &) = delete;
    WatchServer &operator=(const WatchServer &) = delete;

    std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }

private:
    void accept();
    void run();

    // In this order the connections that are still open end before what they use.
    Answer m_answer;
    std::size_t m_open = 0; // connections
    boost::asio::io_context m_io{1};
    boost::asio::ip::tcp::acceptor m_acceptor{m_io};
    boost::asio::steady_timer m_pause{m_io};
    std::thread m_thread;
};

} // namespace tarvex::watch
