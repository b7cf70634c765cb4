#include "Session.h"

#include "AnswerHead.h"
#include "PeerAddress.h"
#include "ProxyHeader.h"
#include "RequestKind.h"

#include <algorithm>
#include <boost/asio/write.hpp>

namespace tarvex::http {

namespace asio = boost::asio;
namespace beast = boost::beast::http;
using requests::Outcome;

namespace {

constexpr std::size_t idleReadSize = 1024; // many connections wait, and most requests are small
constexpr std::size_t lingeringBytes = 1024UL * 1024;
constexpr std::chrono::seconds lingeringTime{2};

} // namespace

Session::Session(Socket socket, ConnectionPlace place, std::string proxy, SessionContext &context)
    : m_context(context), m_place(std::move(place)), m_proxy(std::move(proxy)),
      m_isIntroduced(m_proxy.empty() || context.proxies.source != Proxies::Source::ProxyProtocol),
      m_socket(std::move(socket)), m_handlerTimer(m_socket.get_executor()),
      m_buffer(context.limits.head + readSize)
{
}

void SessionContext::countRefused(ConnectionCounts::Welcome welcome) const
{
    requests::Measures &measures = service.measures();
    if (welcome == ConnectionCounts::Welcome::Refused)
        measures.busyConnections.add();
    else if (welcome == ConnectionCounts::Welcome::Closed)
        measures.closedConnections.add();
}

Session::~Session()
{
    releaseBody();
}

void Session::drain()
{
    Error ignored;
    if (m_isIdle)
        m_socket.close(ignored);
}

std::optional<std::chrono::steady_clock::time_point> Session::idleSince() const
{
    const bool isServed = m_place.welcome() == ConnectionCounts::Welcome::Served; // until it gives way
    return m_isIdle && isServed ? std::optional(m_idleSince) : std::nullopt;
}

void Session::giveWay()
{
    Error ignored;
    m_socket.close(ignored);
    m_place.giveBack();
}

void Session::allow(std::chrono::milliseconds time)
{
    m_deadline = std::chrono::steady_clock::now() + time;
}

void Session::closeIfLate(std::chrono::steady_clock::time_point now)
{
    Error ignored;
    if (now >= m_deadline)
        m_socket.close(ignored);
}

/// Goes on once there is more; not at all when the connection has ended.
template<class Next>
void Session::readSome(std::size_t size, Next next)
{
    m_socket.async_read_some(m_buffer.prepare(size),
                             [self = shared_from_this(), next](Error error, std::size_t read) {
                                 self->m_buffer.commit(read);
                                 if (!error)
                                     next(*self);
                             });
}

void Session::start()
{
    if (!m_isIntroduced) {
        allow(m_context.limits.headTime);
        readIntroduction();
        return;
    }
    if (m_buffer.size() > 0) {
        readHead(); // the client did not wait for the answer before
        return;
    }
    m_isIdle = true;
    if (m_context.isDraining)
        return;
    m_idleSince = std::chrono::steady_clock::now();
    m_deadline = m_idleSince + (m_isFirst ? m_context.limits.headTime : m_context.limits.idleTime);
    m_buffer.shrink_to_fit();
    m_body.shrink_to_fit();
    m_parser.reset();
    readSome(idleReadSize, [](Session &self) { self.readHead(); });
}

/// What a proxy says first: whose connection it is.
void Session::readIntroduction()
{
    const auto bytes = m_buffer.data();
    const ProxyHeader header = readProxyHeader({static_cast<const char *>(bytes.data()), bytes.size()});
    if (header.state == ProxyHeader::State::Incomplete) {
        readSome(readSize, [](Session &self) { self.readIntroduction(); });
        return;
    }
    m_buffer.consume(header.size);
    m_isIntroduced = header.state == ProxyHeader::State::Whole;
    if (m_isIntroduced) {
        const auto before = m_place.welcome();
        m_place.giveTo(header.source ? peerName(*header.source, /*isMachineLimited=*/true) : m_proxy);
        if (m_place.welcome() != before)
            m_context.countRefused(m_place.welcome());
    }
    if (m_isIntroduced && m_place.welcome() != ConnectionCounts::Welcome::Closed)
        start();
}

void Session::readHead()
{
    m_isIdle = false;
    m_isFirst = false;
    ++m_turn;
    m_refusal.reset();
    m_parser.emplace();
    m_parser->header_limit(static_cast<std::uint32_t>(m_context.limits.head));
    m_parser->body_limit(boost::none); // bodies are read here, under limits of their own
    allow(m_context.limits.headTime);
    parseHead();
}

void Session::parseHead()
{
    Error error;
    m_buffer.consume(m_parser->put(m_buffer.data(), error));
    const std::size_t room = m_buffer.capacity() - m_buffer.size(); // a head may come byte by byte
    if (error == beast::error::need_more)
        readSome(std::max(room, idleReadSize / 2), [](Session &self) { self.parseHead(); });
    else if (error)
        refuseHead(error);
    else
        headArrived();
}

void Session::headArrived()
{
    m_site = isForPages(*m_parser) ? m_context.site : nullptr;
    if (const auto fault = m_site ? pageFaultOf(*m_parser) : faultOf(*m_parser))
        sendStatus(fault->status, std::string(fault->sentence));
    else
        beginBody(static_cast<std::size_t>(m_parser->content_length().value_or(0)));
}

void Session::refuseHead(Error error)
{
    if (error == beast::error::header_limit)
        sendStatus(beast::status::request_header_fields_too_large, "The head of the request is too large.");
    else
        sendStatus(beast::status::bad_request, "The request cannot be read.");
}

void Session::bodyArrived()
{
    m_deadline = std::chrono::steady_clock::time_point::max();
    m_arrival = std::chrono::steady_clock::now();
    const unsigned turn = m_turn;
    if (m_site && m_refusal)
        refusePage(*m_refusal);
    else if (m_site)
        servePage();
    else if (m_refusal)
        m_context.workers.refuse(m_body, *m_refusal, later(&Session::answer));
    else
        serve();
    if (turn == m_turn) // else it is answered already
        limitWaiting();
}

/// Whom the request comes from: whoever the proxy says, if there is one.
std::string Session::requestPeer() const
{
    if (m_proxy.empty() || m_context.proxies.source != Proxies::Source::ForwardedFor)
        return m_place.peer();
    std::string values;
    const auto fields = m_parser->get().equal_range("X-Forwarded-For");
    for (auto field = fields.first; field != fields.second; ++field)
        values.append(values.empty() ? "" : ",").append(field->value());
    const auto address = m_context.proxies.forwardedAddress(values);
    return address ? peerName(*address, /*isMachineLimited=*/true) : m_proxy;
}

void Session::serve()
{
    requests::Request request{.body = std::move(m_body), .peer = m_requestPeer, .arrival = m_arrival};
    m_body = request.body.substr(0, beginningOfBody);
    m_context.workers.submit(std::move(request), later(&Session::answer));
}

void Session::limitWaiting()
{
    m_handlerTimer.expires_after(m_context.limits.handlerTime);
    m_handlerTimer.async_wait([self = shared_from_this(), turn = m_turn](Error error) {
        if (error || turn != self->m_turn)
            return;
        if (self->m_site)
            self->refusePage(Outcome::Busy);
        else
            self->answer({self->m_context.service.refuse(self->m_body, Outcome::Busy)});
    });
}

void Session::endTurn()
{
    ++m_turn; // whatever still comes for this request comes too late
    m_handlerTimer.cancel();
    releaseBody();
}

void Session::answer(BuiltAnswer built)
{
    requests::Answer &answer = built.answer;
    endTurn();
    m_isKept = m_parser->get().keep_alive() && answer.outcome != Outcome::Busy && !m_isBodyLeft;
    report(answer);
    forgetRequest();
    m_answerShare = std::move(built.share);
    send(statusOf(answer.outcome), answer.format, std::move(answer.body));
}

/// Leaves no password of it in memory.
void Session::forgetRequest()
{
    security::wipe(m_body);
    const auto spent = m_buffer.prepare(m_buffer.capacity() - m_buffer.size());
    security::wipe(spent.data(), spent.size());
}

void Session::report(const requests::Answer &answer) const
{
    const requests::RequestKind &kind = requests::requestKindOfBody(m_body);
    const auto time = std::chrono::steady_clock::now() - m_arrival;
    m_context.service.measures().count(kind, answer, time);
    if (m_context.report)
        m_context.report({.kind = kind.name,
                          .outcome = answer.outcome,
                          .reason = answer.reason,
                          .cause = answer.cause,
                          .peer = m_requestPeer,
                          .bytesIn = m_bodySize,
                          .bytesOut = answer.body.size(),
                          .time = std::chrono::duration_cast<std::chrono::microseconds>(time)});
}

void Session::sendStatus(beast::status status, const std::string &sentence)
{
    m_context.service.measures().unreadable.add();
    m_isKept = false; // the body that may follow is not read
    send(status, requests::Format::Plain, sentence + "\n");
}

void Session::send(beast::status status, requests::Format format, std::string body)
{
    m_isKept = m_isKept && !m_context.isDraining;
    std::string head = answerHead(status, format, body.size(), m_isKept);
    send(std::move(head), std::move(body));
}

void Session::send(std::string head, std::string body)
{
    m_answer = {std::move(head), std::move(body)};
    allow(m_context.limits.writeTime);
    asio::async_write(m_socket, std::array{asio::buffer(m_answer[0]), asio::buffer(m_answer[1])},
                      [self = shared_from_this()](Error error, std::size_t) {
                          if (!error)
                              self->sent();
                      });
}

void Session::sent()
{
    m_answer = {}; // the connection may be idle for long
    m_answerShare.reset();
    if (m_isKept) {
        start();
        return;
    }
    // Closing with unread bytes would reset the connection and could take the answer with it.
    Error ignored;
    m_socket.shutdown(Socket::shutdown_send, ignored);
    m_buffer.clear();
    m_bodyRest = lingeringBytes;
    allow(lingeringTime);
    linger();
}

void Session::linger()
{
    m_socket.async_read_some(m_buffer.prepare(readSize),
                             [self = shared_from_this()](Error error, std::size_t size) {
                                 self->m_bodyRest -= std::min(size, self->m_bodyRest);
                                 if (!error && self->m_bodyRest > 0)
                                     self->linger();
                             });
}

} // namespace tarvex::http
