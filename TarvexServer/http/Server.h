#pragma once

#include "ConnectionCounts.h"
#include "Limits.h"
#include "Listening.h"
#include "Session.h"
#include "Workers.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tarvex::http {

/// What a server tells whoever runs it, on its own thread; what is empty is told to nobody.
struct ServerEvents
{
    std::function<void()> round;  ///< it is alive: twice a second, until it drains
    std::function<void()> drain;  ///< it has begun to
    std::function<void()> hangUp; ///< SIGHUP came
};

/// Listens on one address and serves what comes, until it is told to drain.
class Server
{
public:
    /// Binds at once; port 0 takes a free one. Throws CannotListen.
    Server(requests::Service &service, const std::string &host, std::uint16_t port, const Limits &limits = {},
           Reporter report = {}, Proxies proxies = {});

    std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }

    /// Shows pages beside the protocol from the next request on; null ends that. In the thread of the events.
    void show(pages::Site *site) { m_context.site = site; }

    /// To be called before run().
    void tell(ServerEvents events) { m_events = std::move(events); }

    /// Makes SIGTERM and SIGINT drain the server. A second one ends the process at once, and so does time: it
    /// has gone within five seconds. SIGHUP, unless it was ignored, is an event.
    void heedSignals();

    /// From now on takes the word of these on whom they speak for. In the thread of the events.
    void trust(std::vector<boost::asio::ip::network_v6> proxies);

    /// How many connections are being served. From any thread.
    std::size_t connections() const { return m_counts.served(); }

    /// Serves on the calling thread until drained. Without memory for a connection it goes on without that
    /// connection.
    void run();

    /// Takes no more connections, lets the requests under way finish, then ends run(). What takes longer than
    /// the limits allow is closed. May be called from any thread.
    void drain();

private:
    void heedHangUp();
    void accept();
    void welcome(Socket socket);
    void makeRoom(const std::string &peer);
    void makeRounds();
    template<class Work>
    void withoutEnding(Work work);
    void beginDrain();
    void cutShort();

    // In this order the sessions that the last two still hold end before what they use.
    ConnectionCounts m_counts;
    SessionContext m_context;
    boost::asio::io_context m_io{1};
    Workers m_workers;
    boost::asio::basic_socket_acceptor<boost::asio::ip::tcp, Socket::executor_type> m_acceptor{m_io};
    std::weak_ptr<char> m_accepting; ///< expired when no connection is waited for
    boost::asio::signal_set m_signals{m_io};
    boost::asio::signal_set m_hangUps{m_io};
    ServerEvents m_events;
    std::vector<std::weak_ptr<Session>> m_sessions;
};

} // namespace tarvex::http
