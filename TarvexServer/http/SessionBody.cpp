// How a session reads the body of a request.

#include "Session.h"

#include <algorithm>
#include <boost/asio/write.hpp>
#include <boost/beast/http/rfc7230.hpp>

namespace tarvex::http {

namespace asio = boost::asio;
namespace beast = boost::beast::http;
using requests::Outcome;

namespace {

constexpr std::size_t freeBody = 64UL * 1024; // bodies up to this size need no reservation
constexpr std::size_t bodyStep = 64UL * 1024; // and further ones are reserved by so much as they arrive

} // namespace

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

void Session::cutShort()
{
    const bool isLingering = !m_isKept; // behind its answer
    if (m_bodyRest > 0 && !isLingering)
        bodyCutShort();
}

void Session::releaseBody()
{
    m_context.bodyBytes -= m_reservedBody;
    m_reservedBody = 0;
}

} // namespace tarvex::http
