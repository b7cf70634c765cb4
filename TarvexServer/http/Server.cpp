#include "Server.h"

#include "PeerAddress.h"

#include <boost/asio/post.hpp>
#include <csignal>

namespace tarvex::http {

namespace asio = boost::asio;
using boost::beast::error_code;

namespace {

constexpr std::chrono::milliseconds acceptPause{100};

std::string withPort(const std::string &host, std::uint16_t port)
{
    return host + ":" + std::to_string(port);
}

asio::ip::tcp::endpoint resolve(asio::io_context &io, const std::string &host, std::uint16_t port)
{
    error_code error;
    asio::ip::tcp::resolver resolver(io);
    const auto found =
        resolver.resolve(host, std::to_string(port), asio::ip::tcp::resolver::numeric_service, error);
    if (error || found.empty())
        throw CannotListen("The address " + withPort(host, port) + " cannot be found: " + error.message() +
                           ".");
    return found.begin()->endpoint();
}

} // namespace

Server::Server(requests::Service &service, const std::string &host, std::uint16_t port, const Limits &limits,
               Reporter report)
    : m_counts(limits), m_context{.limits = limits,
                                  .service = service,
                                  .workers = m_workers,
                                  .counts = m_counts,
                                  .report = std::move(report)},
      m_workers(service, limits)
{
    const asio::ip::tcp::endpoint endpoint = resolve(m_io, host, port);
    error_code error;
    m_acceptor.open(endpoint.protocol(), error);
    if (!error)
        m_acceptor.set_option(asio::socket_base::reuse_address(true), error);
    if (!error)
        m_acceptor.bind(endpoint, error);
    if (!error)
        m_acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error)
        throw CannotListen("The address " + withPort(host, port) +
                           " cannot be listened on: " + error.message() + ".");
}

void Server::drainOnSignals()
{
    m_signals.add(SIGTERM);
    m_signals.add(SIGINT);
    m_signals.async_wait([this](error_code error, int) {
        if (!error)
            beginDrain();
    });
}

void Server::run()
{
    accept();
    keepHouse();
    while (!m_context.isDraining && m_io.run_one() > 0) {
    }
    m_io.run_for(m_context.limits.drainTime); // until the last connection has ended, or no longer
    m_workers.stop();
}

void Server::drain()
{
    asio::post(m_io, [this] { beginDrain(); });
}

void Server::accept()
{
    m_acceptor.async_accept([this](error_code error, asio::ip::tcp::socket socket) {
        if (m_context.isDraining)
            return;
        if (!error) {
            welcome(std::move(socket));
            accept();
            return;
        }
        // Out of descriptors, most likely: trying again at once would only burn time.
        m_acceptTimer.expires_after(acceptPause);
        m_acceptTimer.async_wait([this](error_code ended) {
            if (!ended)
                accept();
        });
    });
}

void Server::welcome(asio::ip::tcp::socket socket)
{
    error_code error;
    const auto remote = socket.remote_endpoint(error);
    if (error)
        return; // gone already
    socket.set_option(asio::ip::tcp::no_delay(true), error);
    std::string peer = peerName(remote.address());
    const ConnectionCounts::Welcome welcome = m_counts.enter(peer);
    if (welcome == ConnectionCounts::Welcome::Closed)
        return;
    const auto session = std::make_shared<Session>(std::move(socket), std::move(peer), welcome, m_context);
    std::erase_if(m_sessions, [](const std::weak_ptr<Session> &known) { return known.expired(); });
    m_sessions.push_back(session);
    session->start();
}

void Server::keepHouse()
{
    m_houseTimer.expires_after(std::chrono::seconds(1));
    m_houseTimer.async_wait([this](error_code ended) {
        if (ended)
            return;
        m_context.service.keepHouse();
        keepHouse();
    });
}

void Server::beginDrain()
{
    m_context.isDraining = true;
    error_code ignored;
    m_acceptor.close(ignored);
    m_acceptTimer.cancel();
    m_houseTimer.cancel();
    m_signals.cancel(ignored);
    for (const auto &known : m_sessions) {
        if (const auto session = known.lock())
            session->drain();
    }
}

} // namespace tarvex::http
