#include "LoopbackService.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

QByteArray bodyOf(const QByteArray &request)
{
    const qsizetype headEnd = request.indexOf("\r\n\r\n");
    return headEnd < 0 ? QByteArray() : request.sliced(headEnd + 4);
}

/// Whether all of a request is there, as far as its header tells.
bool isComplete(const QByteArray &request)
{
    const qsizetype headEnd = request.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return false;
    const QByteArray field = "\r\ncontent-length: ";
    const QByteArray head = request.first(headEnd).toLower();
    const qsizetype at = head.indexOf(field);
    const QByteArray length = at < 0 ? "0" : head.sliced(at + field.size()).split('\r').first();
    return request.size() >= headEnd + 4 + length.toLongLong();
}

} // namespace

ServiceReply httpReply(const QByteArray &body, const QByteArray &status, const QByteArray &headers)
{
    return {"HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + QByteArray::number(body.size()) +
            "\r\n\r\n" + body};
}

LoopbackService::LoopbackService() : m_listener(socket(AF_INET, SOCK_STREAM, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *anyAddress = reinterpret_cast<sockaddr *>(&address);
    socklen_t length = sizeof(address);
    if (bind(m_listener, anyAddress, length) != 0 || listen(m_listener, SOMAXCONN) != 0 ||
        getsockname(m_listener, anyAddress, &length) != 0)
        throw std::runtime_error("cannot listen on loopback");
    m_port = ntohs(address.sin_port);
    m_acceptor = std::jthread([this] { acceptConnections(); });
}

LoopbackService::~LoopbackService()
{
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    close(m_listener);
    const std::lock_guard lock(m_mutex);
    m_isStopping = true;
    for (const int connection : m_connections)
        shutdown(connection, SHUT_RDWR);
    m_changed.notify_all();
}

QByteArray LoopbackService::url() const
{
    return "http://127.0.0.1:" + QByteArray::number(m_port) + "/tarvex/";
}

void LoopbackService::answer(const QByteArray &kind, const ServiceReply &reply)
{
    const std::lock_guard lock(m_mutex);
    m_script[kind] = reply;
}

void LoopbackService::hold(bool held)
{
    const std::lock_guard lock(m_mutex);
    m_isHeld = held;
    m_changed.notify_all();
}

QList<QByteArray> LoopbackService::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

QList<QByteArray> LoopbackService::bodies() const
{
    QList<QByteArray> bodies = requests();
    std::transform(bodies.cbegin(), bodies.cend(), bodies.begin(), bodyOf);
    return bodies;
}

std::size_t LoopbackService::openConnections() const
{
    const std::lock_guard lock(m_mutex);
    return m_connections.size();
}

void LoopbackService::acceptConnections()
{
    for (int connection = 0; (connection = accept(m_listener, nullptr, nullptr)) >= 0;) {
        const int noDelay = 1;
        (void)setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof(noDelay));
        const std::lock_guard lock(m_mutex);
        m_connections.push_back(connection);
        m_servers.emplace_back([this, connection] { serve(connection); });
    }
}

// Clients send nothing more before they have their answer; if one did, it would show as part of the request.
void LoopbackService::serve(int connection)
{
    QByteArray received;
    std::array<char, 65536> piece;
    bool isKept = true;
    for (ssize_t got = 0; isKept && (got = recv(connection, piece.data(), piece.size(), 0)) > 0;) {
        received.append(piece.data(), got);
        if (isComplete(received))
            isKept = send(connection, replyTo(std::exchange(received, {})));
    }
    const std::lock_guard lock(m_mutex);
    std::erase(m_connections, connection);
    if (!received.isEmpty())
        m_requests.append(received);
    close(connection);
}

ServiceReply LoopbackService::replyTo(const QByteArray &request)
{
    std::unique_lock lock(m_mutex);
    m_requests.append(request);
    m_changed.wait(lock, [this] { return !m_isHeld || m_isStopping; });
    const QByteArray kind = bodyOf(request).split('&').first().mid(3); // behind "p1="
    const auto script = m_script.find(kind);
    if (script == m_script.end())
        return httpReply("Error");
    const ServiceReply reply = script->second;
    if (reply.isOnce)
        m_script.erase(script);
    return reply;
}

bool LoopbackService::send(int connection, const ServiceReply &reply)
{
    for (QByteArrayView unsent = reply.bytes; !unsent.isEmpty();) {
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_for(lock, reply.perByte, [this] { return m_isStopping; }))
            return false;
        lock.unlock();
        const auto length = static_cast<size_t>(reply.perByte.count() > 0 ? 1 : unsent.size());
        const ssize_t count = ::send(connection, unsent.data(), length, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        unsent = unsent.sliced(count);
    }
    return !reply.closes;
}
