#include "Session.h"

#include "AnswerHead.h"
#include "PeerAddress.h"
#include "ProxyHeader.h"
#include "RequestKind.h"

#include <algorithm>
#include <boost/asio/write.hpp>
#include <boost/beast/http/rfc7230.hpp>

namespace tarvex::http {

namespace asio = boost::asio;
namespace beast = boost::beast::http;
using requests::Outcome;

namespace {

constexpr std::size_t readSize = 16UL * 1024;
constexpr std::size_t idleReadSize = 1024;    // many connections wait, and most requests are small
constexpr std::size_t beginningOfBody = 4096; // enough to tell what a request is
constexpr std::size_t freeBody = 64UL * 1024; // bodies up to this size need no reservation
constexpr std::size_t bodyStep = 64UL * 1024; // and further ones are reserved by so much as they arrive
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

void Session::cutShort()
{
    const bool isLingering = !m_isKept; // behind its answer
    if (m_bodyRest > 0 && !isLingering)
        bodyCutShort();
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

void Session::beginBody(std::size_t length)
{
    const Limits &limits = m_context.limits;
    if (length > (m_site ? limits.form : limits.body))
        m_refusal = Outcome::TooLarge;
    else if (m_place.welcome() == ConnectionCounts::Welcome::Refused)
        m_refusal = Outcome::Busy;
    m_body.clear();
    m_requestPeer = requestPeer();
    m_bodySize = length;
    m_keptBody = m_refusal ? std::min(length, beginningOfBody) : length;
    m_bodyRest = length > limits.discardedBody ? m_keptBody : length;
    allow(limits.bodyTime);
    const bool isToldToGoOn = beast::token_list(m_parser->get()[beast::field::expect]).exists("100-continue");
    // Of the protocol the service has to see what it refuses: it may be a save.
    const bool isUnwanted = m_site && m_refusal && isToldToGoOn;
    m_isBodyLeft = length > limits.discardedBody || isUnwanted;
    static constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
    if (!isToldToGoOn)
        readBody();
    else if (isUnwanted)
        bodyArrived();
    else
        asio::async_write(m_socket, asio::buffer(goOn), [self = shared_from_this()](Error, std::size_t) {
            self->readBody(); // which meets the same error
        });
}

void Session::readBody()
{
    takeBodyBytes();
    if (m_bodyRest == 0) {
        bodyArrived();
        return;
    }
    m_socket.async_read_some(m_buffer.prepare(std::min(readSize, m_bodyRest)),
                             [self = shared_from_this()](Error error, std::size_t size) {
                                 self->m_buffer.commit(size);
                                 if (!error)
                                     self->readBody();
                                 else
                                     self->bodyCutShort();
                             });
}

/// Nobody waits for an answer any more, but the service has to know what it did not do.
void Session::bodyCutShort()
{
    takeBodyBytes();
    m_arrival = std::chrono::steady_clock::now();
    if (!m_site)
        report(m_context.service.refuse(m_body, m_refusal.value_or(Outcome::Invalid)));
    forgetRequest();
    releaseBody();
}

void Session::takeBodyBytes()
{
    const std::size_t size = std::min(m_buffer.size(), m_bodyRest);
    reserveBody(std::min(m_body.size() + size, m_keptBody));
    const std::size_t kept = std::min(size, m_keptBody - m_body.size());
    m_body.append(static_cast<const char *>(m_buffer.data().data()), kept);
    m_buffer.consume(size);
    m_bodyRest -= size;
}

/// Makes room for that much of a body, or gives up all but its beginning because there is none left.
void Session::reserveBody(std::size_t size)
{
    while (size > freeBody + m_reservedBody) {
        if (m_context.bodyBytes + bodyStep > m_context.limits.bodiesInMemory) {
            m_refusal = Outcome::Busy;
            m_keptBody = beginningOfBody;
            moveBody(beginningOfBody);
            releaseBody();
            return;
        }
        m_context.bodyBytes += bodyStep;
        m_reservedBody += bodyStep;
    }
    if (size > m_body.capacity()) // of which no more is in memory than has come
        moveBody(size > freeBody ? m_keptBody : std::min(m_keptBody, freeBody));
}

/// Keeps so much of the body in as much room, and nothing of it where it was.
void Session::moveBody(std::size_t room)
{
    std::string moved;
    moved.reserve(room);
    moved.append(m_body, 0, room);
    m_body.swap(moved);
    security::wipe(moved);
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

void Session::releaseBody()
{
    m_context.bodyBytes -= m_reservedBody;
    m_reservedBody = 0;
}

} // namespace tarvex::http
