#include "LoopbackService.h"

#include <arpa/inet.h>
#include <array>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace {

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// A bound socket on a free port, which is not listened at yet.
int boundSocket(quint16 &port)
{
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(/*port=*/0);
    socklen_t length = sizeof(address);
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr *>(&address), &length) != 0)
        throw std::runtime_error("no free port on loopback");
    port = ntohs(address.sin_port);
    return fd;
}

QByteArray urlOfPort(quint16 port)
{
    return "http://127.0.0.1:" + QByteArray::number(port) + "/tarvex/";
}

QByteArray bodyOf(const QByteArray &request)
{
    const qsizetype headEnd = request.indexOf("\r\n\r\n");
    return headEnd < 0 ? QByteArray() : request.sliced(headEnd + 4);
}

/// How long the request that starts the bytes is, or -1 while its header is incomplete.
qsizetype requestLength(const QByteArray &bytes)
{
    const qsizetype headEnd = bytes.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return -1;
    const QByteArray field = "\r\ncontent-length: ";
    const qsizetype at = bytes.first(headEnd).toLower().indexOf(field);
    const QByteArray value = at < 0 ? "0" : bytes.sliced(at + field.size());
    return headEnd + 4 + value.first(value.indexOf('\r')).toLongLong();
}

QByteArray kindOf(const QByteArray &body)
{
    const QByteArray field = body.split('&').first();
    return field.startsWith("p1=") ? field.sliced(3) : QByteArray();
}

} // namespace

ServiceReply httpReply(const QByteArray &body, const QByteArray &status, const QByteArray &headers)
{
    return {"HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + QByteArray::number(body.size()) +
            "\r\n\r\n" + body};
}

LoopbackService::LoopbackService() : m_listener(boundSocket(m_port))
{
    if (listen(m_listener, SOMAXCONN) != 0)
        throw std::runtime_error("cannot listen on loopback");
    m_acceptor = std::thread([this] { acceptConnections(); });
}

LoopbackService::~LoopbackService()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
        for (const int connection : m_connections)
            shutdown(connection, SHUT_RDWR);
    }
    m_changed.notify_all();
    const int waker = socket(AF_INET, SOCK_STREAM, 0); // makes the acceptor look up
    const sockaddr_in address = loopback(m_port);
    (void)connect(waker, reinterpret_cast<const sockaddr *>(&address), sizeof(address));
    m_acceptor.join();
    for (std::thread &server : m_servers)
        server.join();
    close(waker);
    close(m_listener);
}

QByteArray LoopbackService::url() const
{
    return urlOfPort(m_port);
}

void LoopbackService::answer(const QByteArray &kind, const ServiceReply &reply)
{
    const std::lock_guard lock(m_mutex);
    m_script[kind] = reply;
}

void LoopbackService::hold()
{
    const std::lock_guard lock(m_mutex);
    m_isHeld = true;
}

void LoopbackService::release()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isHeld = false;
    }
    m_changed.notify_all();
}

QList<QByteArray> LoopbackService::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

QList<QByteArray> LoopbackService::bodies() const
{
    QList<QByteArray> bodies;
    for (const QByteArray &request : requests())
        bodies.append(bodyOf(request));
    return bodies;
}

std::size_t LoopbackService::openConnections() const
{
    const std::lock_guard lock(m_mutex);
    return m_connections.size();
}

void LoopbackService::acceptConnections()
{
    for (;;) {
        const int connection = accept(m_listener, nullptr, nullptr);
        const std::lock_guard lock(m_mutex);
        if (connection < 0 || m_isStopping) {
            close(connection);
            return;
        }
        const int noDelay = 1;
        (void)setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof(noDelay));
        m_connections.push_back(connection);
        m_servers.emplace_back([this, connection] { serve(connection); });
    }
}

void LoopbackService::serve(int connection)
{
    QByteArray unread;
    while (const std::optional<QByteArray> request = readRequest(connection, unread)) {
        const ServiceReply reply = replyTo(*request);
        if (!send(connection, reply) || reply.closes)
            break;
    }
    const std::lock_guard lock(m_mutex);
    std::erase(m_connections, connection);
    if (!unread.isEmpty())
        m_requests.append(unread);
    close(connection);
}

std::optional<QByteArray> LoopbackService::readRequest(int connection, QByteArray &unread)
{
    std::array<char, 65536> piece;
    qsizetype length = requestLength(unread);
    while (length < 0 || unread.size() < length) {
        const ssize_t got = recv(connection, piece.data(), piece.size(), 0);
        if (got <= 0)
            return std::nullopt;
        unread.append(piece.data(), got);
        length = requestLength(unread);
    }
    const QByteArray request = unread.first(length);
    unread.remove(0, length);
    const std::lock_guard lock(m_mutex);
    m_requests.append(request);
    return request;
}

ServiceReply LoopbackService::replyTo(const QByteArray &request)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isHeld || m_isStopping; });
    const auto script = m_script.find(kindOf(bodyOf(request)));
    return script == m_script.end() ? httpReply("Error") : script->second;
}

bool LoopbackService::send(int connection, const ServiceReply &reply)
{
    const bool isDripping = reply.perByte.count() > 0;
    for (QByteArrayView unsent = reply.bytes; !unsent.isEmpty();) {
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_for(lock, reply.perByte, [this] { return m_isStopping; }))
            return false;
        lock.unlock();
        const auto length = isDripping ? size_t(1) : static_cast<size_t>(unsent.size());
        const ssize_t count = ::send(connection, unsent.data(), length, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        unsent = unsent.sliced(count);
    }
    return true;
}

QByteArray refusingUrl()
{
    // Bound and never listened at: nobody else can get the port while this process lives.
    static const quint16 port = [] {
        quint16 bound = 0;
        boundSocket(bound);
        return bound;
    }();
    return urlOfPort(port);
}
