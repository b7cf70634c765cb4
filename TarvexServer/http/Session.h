#pragma once

#include "AnswerMemory.h"
#include "ConnectionCounts.h"
#include "Limits.h"
#include "Proxies.h"
#include "RequestHead.h"
#include "Service.h"
#include "Wipe.h"
#include "Workers.h"

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarvex::http {

/// What may be told of a request that was answered: nothing of its values.
struct RequestReport
{
    std::string_view kind; ///< empty if it was none of the protocol
    requests::Outcome outcome = requests::Outcome::Done;
    requests::Reason reason = requests::Reason::None;
    std::string_view cause = {};
    std::string_view peer = {}; ///< not for a log, which can name it by a mark; empty for the machine itself
    std::size_t bytesIn = 0;
    std::size_t bytesOut = 0;
    std::chrono::microseconds time{0};
};

/// With the executor's type known, which spares what asking for it costs.
using Socket = boost::asio::basic_stream_socket<boost::asio::ip::tcp, boost::asio::io_context::executor_type>;

using Reporter = std::function<void(const RequestReport &)>;

/// What all sessions of a server share. Except for service, workers and answers it belongs to the network
/// thread.
struct SessionContext
{
    Limits limits;
    Proxies proxies;
    requests::Service &service;
    pages::Site *site; ///< null where there are no pages
    Workers &workers;
    Reporter report;
    AnswerMemory answers;
    std::size_t bodyBytes = 0; ///< reserved for bodies that are being read or served
    bool isDraining = false;

    /// Counts what became of a connection, unless it is served.
    void countRefused(ConnectionCounts::Welcome welcome) const;
};

/// One connection: reads a request to its end, has it answered, and begins again. It keeps itself alive while
/// something is under way, and lives on the network thread.
class Session : public std::enable_shared_from_this<Session>
{
public:
    /// The address is whose word is taken on whom it speaks for; empty for a connection that speaks for
    /// itself.
    Session(Socket socket, ConnectionPlace place, std::string proxy, SessionContext &context);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Waits for a request: the first, or the next.
    void start();
    /// Closes the connection if no request is under way; otherwise it closes after the answer.
    void drain();
    /// Has the service note a request that is still arriving as cut short, while its sender hears nothing of
    /// it. Nothing of it may be read any more.
    void cutShort();

    /// Closes the connection if what it waits for has taken longer than it may; to be called now and then.
    void closeIfLate(std::chrono::steady_clock::time_point now);

    /// Since when it has been waiting for a request; nothing while one is under way, or if it is not served.
    std::optional<std::chrono::steady_clock::time_point> idleSince() const;
    /// Closes the connection for the sake of another; to be called while it waits for a request.
    void giveWay();
    const std::string &peer() const { return m_place.peer(); }

private:
    static constexpr std::size_t readSize = 16UL * 1024;
    static constexpr std::size_t beginningOfBody = 4096; ///< enough to tell what a request is

    using Error = boost::beast::error_code;

    template<class Next>
    void readSome(std::size_t size, Next next);
    void allow(std::chrono::milliseconds time);
    void readIntroduction();
    void readHead();
    void parseHead();
    void headArrived();
    void refuseHead(Error error);
    void beginBody(std::size_t length);
    void readBody();
    void bodyCutShort();
    void takeBodyBytes();
    void bodyArrived();
    std::string requestPeer() const;
    void serve();
    void servePage();
    void answerPage(BuiltPage built);
    void refusePage(requests::Outcome outcome);
    pages::Request pageRequest();
    template<class Built>
    std::function<void(Built)> later(void (Session::*take)(Built));
    void limitWaiting();
    void endTurn();
    void answer(BuiltAnswer built);
    void report(const requests::Answer &answer) const;
    void reportPage(const pages::Reply &reply) const;
    void sendStatus(boost::beast::http::status status, const std::string &sentence);
    void send(boost::beast::http::status status, requests::Format format, std::string body);
    void send(std::string head, std::string body);
    void sent();
    void linger();
    void reserveBody(std::size_t size);
    void moveBody(std::size_t room);
    void releaseBody();
    void forgetRequest();

    SessionContext &m_context;
    ConnectionPlace m_place;
    std::string m_proxy;
    bool m_isIntroduced;
    Socket m_socket;
    std::chrono::steady_clock::time_point m_deadline = std::chrono::steady_clock::time_point::max();
    boost::asio::basic_waitable_timer<
        std::chrono::steady_clock, boost::asio::wait_traits<std::chrono::steady_clock>, Socket::executor_type>
        m_handlerTimer;
    boost::beast::basic_flat_buffer<security::WipingAllocator<char>> m_buffer;
    std::optional<HeadParser> m_parser;
    std::array<std::string, 2> m_answer; ///< its head and its body
    bool m_isKept = true;                ///< the connection, behind the answer
    AnswerMemory::Share m_answerShare;

    std::string m_body;
    std::string m_requestPeer;
    std::size_t m_bodyRest = 0; ///< bytes still to come
    bool m_isBodyLeft = false;  // and not going to be read
    std::size_t m_bodySize = 0;
    std::size_t m_keptBody = 0;     ///< of a request that will be refused only the beginning is kept
    std::size_t m_reservedBody = 0; ///< this session's share of SessionContext::bodyBytes
    pages::Site *m_site = nullptr;  ///< whose page the request asks for; null if it speaks the protocol
    std::optional<requests::Outcome> m_refusal;
    std::chrono::steady_clock::time_point m_arrival;
    unsigned m_turn = 0; ///< counts requests, so that a late answer does not meet the next one
    bool m_isIdle = true;
    std::chrono::steady_clock::time_point m_idleSince = std::chrono::steady_clock::now();
    bool m_isFirst = true;
};

/// Has a function take what the present request leads to, on any thread.
template<class Built>
std::function<void(Built)> Session::later(void (Session::*take)(Built))
{
    return [weak = weak_from_this(), turn = m_turn, take,
            guard = boost::asio::make_work_guard(m_socket.get_executor())](Built built) {
        // The session must not end on the thread of a worker: until it is answered, its timer keeps it.
        boost::asio::dispatch(guard.get_executor(), [weak, turn, take, built = std::move(built)]() mutable {
            const auto self = weak.lock();
            if (self && turn == self->m_turn)
                (self.get()->*take)(std::move(built));
        });
    };
}

} // namespace tarvex::http
