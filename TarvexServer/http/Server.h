#pragma once

#include "ConnectionCounts.h"
#include "Limits.h"
#include "Session.h"
#include "Workers.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarvex::http {

/// The address cannot be listened on; what() is one sentence for whoever starts the server.
class CannotListen : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Listens on one address and serves what comes, until it is told to drain.
class Server
{
public:
    /// Binds at once; port 0 takes a free one. Throws CannotListen.
    Server(requests::Service &service, const std::string &host, std::uint16_t port, const Limits &limits = {},
           Reporter report = {}, Proxies proxies = {});

    std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }

    /// Makes SIGTERM, SIGINT and, unless it was ignored, SIGHUP drain the server. A second one ends the
    /// process at once, and so does time: it has gone within five seconds.
    void drainOnSignals();

    /// Serves on the calling thread until drained. Without memory for a connection it goes on without that
    /// connection.
    void run();

    /// Takes no more connections, lets the requests under way finish, then ends run(). What takes longer than
    /// the limits allow is closed. May be called from any thread.
    void drain();

private:
    void accept();
    void welcome(Socket socket);
    void makeRoom(const std::string &peer);
    void makeRounds();
    template<class Work>
    void withoutEnding(Work work);
    void beginDrain();

    // In this order the sessions that the last two still hold end before what they use.
    ConnectionCounts m_counts;
    SessionContext m_context;
    boost::asio::io_context m_io{1};
    Workers m_workers;
    boost::asio::basic_socket_acceptor<boost::asio::ip::tcp, Socket::executor_type> m_acceptor{m_io};
    std::weak_ptr<char> m_accepting; ///< expired when no connection is waited for
    boost::asio::signal_set m_signals{m_io};
    std::vector<std::weak_ptr<Session>> m_sessions;
};

} // namespace tarvex::http
