#include "Server.h"

#include "PeerAddress.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <csignal>
#include <cstdlib>
#include <future>
#include <unistd.h>

namespace tarvex::http {

namespace asio = boost::asio;
using boost::beast::error_code;

namespace {

constexpr std::chrono::milliseconds roundTime{500};

/// After so many seconds a signal ends the process, whatever is still under way.
constexpr unsigned longestDrain = 4;

} // namespace

Server::Server(requests::Service &service, const std::string &host, std::uint16_t port, const Limits &limits,
               Reporter report, Proxies proxies)
    : m_counts(limits), m_context{.limits = limits,
                                  .proxies = std::move(proxies),
                                  .service = service,
                                  .site = nullptr,
                                  .workers = m_workers,
                                  .report = std::move(report),
                                  .answers = AnswerMemory(limits.answersInMemory)},
      m_workers(service, limits, m_context.answers)
{
    listen(m_acceptor, endpointOf(m_io, host, port), host);
}

void Server::heedSignals()
{
    m_signals.add(SIGTERM);
    m_signals.add(SIGINT);
    struct sigaction hangUp = {};
    if (::sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN)
        m_hangUps.add(SIGHUP);
    heedHangUp();
    m_signals.async_wait([this](error_code error, int) {
        if (error)
            return;
        beginDrain();
        std::signal(SIGALRM, [](int) { std::_Exit(EXIT_SUCCESS); }); // what was confirmed is on disk
        ::alarm(longestDrain);
    });
}

void Server::heedHangUp()
{
    m_hangUps.async_wait([this](error_code error, int) {
        if (error)
            return;
        heedHangUp();
        if (m_events.hangUp)
            m_events.hangUp();
    });
}

void Server::trust(std::vector<asio::ip::network_v6> proxies)
{
    m_context.proxies.trusted = std::move(proxies);
}

void Server::run()
{
    auto work = asio::make_work_guard(m_io);
    while (!m_context.isDraining)
        withoutEnding([this] {
            makeRounds();
            m_io.run_for(roundTime);
        });
    work.reset();
    m_io.restart();
    // Until the last connection has ended, or no longer.
    const auto end = std::chrono::steady_clock::now() + m_context.limits.drainTime;
    while (!m_io.stopped() && std::chrono::steady_clock::now() < end)
        withoutEnding([&] { m_io.run_until(end); });
    if (!m_io.stopped())
        withoutEnding([this] { cutShort(); });
    m_workers.stop();
}

/// What still arrives is noted before its connection closes and the delete behind a save goes elsewhere.
void Server::cutShort()
{
    for (const auto &known : m_sessions) {
        if (const auto session = known.lock())
            withoutEnding([&] { session->cutShort(); });
    }
    const auto noted = std::make_shared<std::promise<void>>(); // which another thread may leave last
    m_context.service.onceNoted([noted] { noted->set_value(); });
    noted->get_future().wait();
}

/// What fails for want of memory has let go of its connection, and of nothing else.
template<class Work>
void Server::withoutEnding(Work work)
{
    try {
        work();
    } catch (const std::exception &error) {
        if (m_context.report)
            m_context.report({.kind = "", .outcome = requests::Outcome::Failed, .cause = error.what()});
    }
}

void Server::drain()
{
    asio::post(m_io, [this] { beginDrain(); });
}

void Server::accept()
{
    const auto token = std::make_shared<char>(); // goes with the handler, even with one that never runs
    m_accepting = token;
    m_acceptor.async_accept([this, token](error_code error, Socket socket) {
        if (error || m_context.isDraining)
            return; // out of descriptors, most likely: the next round tries again
        accept();
        welcome(std::move(socket));
    });
}

void Server::welcome(Socket socket)
{
    error_code error;
    const auto remote = socket.remote_endpoint(error);
    if (error)
        return; // gone already
    socket.set_option(asio::ip::tcp::no_delay(true), error);
    const Proxies &proxies = m_context.proxies;
    std::string name = peerName(remote.address(), /*isMachineLimited=*/!proxies.trusted.empty());
    const bool isProxy = proxies.isTrusted(remote.address());
    std::string peer = isProxy ? "" : name; // many come through a proxy
    makeRoom(peer);
    ConnectionPlace place(m_counts, std::move(peer));
    m_context.service.measures().connections.add();
    m_context.countRefused(place.welcome());
    if (place.welcome() == ConnectionCounts::Welcome::Closed)
        return;
    const auto session = std::make_shared<Session>(std::move(socket), std::move(place),
                                                   isProxy ? std::move(name) : "", m_context);
    std::erase_if(m_sessions, [](const std::weak_ptr<Session> &known) { return known.expired(); });
    m_sessions.push_back(session);
    session->start();
}

/// When there is none, the connection that has been idle the longest goes; the peer's own, if the peer has
/// too many.
void Server::makeRoom(const std::string &peer)
{
    const bool isPeerFull = m_counts.isFullFor(peer);
    if (!isPeerFull && !m_counts.isFull())
        return;
    std::shared_ptr<Session> longest;
    for (const auto &known : m_sessions) {
        const auto session = known.lock();
        const bool mayGo = session && session->idleSince() && (!isPeerFull || session->peer() == peer);
        if (mayGo && (!longest || session->idleSince() < longest->idleSince()))
            longest = session;
    }
    if (longest)
        longest->giveWay();
}

/// Now and then: what the service needs, an end to what takes too long, and new connections where accepting
/// them failed.
void Server::makeRounds()
{
    const auto now = std::chrono::steady_clock::now();
    for (const auto &known : m_sessions) {
        if (const auto session = known.lock())
            session->closeIfLate(now);
    }
    if (m_accepting.expired())
        accept();
    m_context.service.keepHouse();
    if (m_events.round)
        m_events.round();
}

void Server::beginDrain()
{
    m_context.isDraining = true;
    m_io.stop(); // so that run() notices
    error_code ignored;
    m_acceptor.close(ignored);
    m_signals.clear(ignored);  // a second one ends the process
    m_hangUps.cancel(ignored); // and keeps nobody
    if (m_events.drain)
        m_events.drain();
    for (const auto &known : m_sessions) {
        if (const auto session = known.lock())
            session->drain();
    }
}

} // namespace tarvex::http
