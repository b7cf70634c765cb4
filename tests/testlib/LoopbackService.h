#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <QByteArray>
#include <QList>
#include <thread>
#include <vector>

/// What the service sends for one request: any bytes at all, so every fault of a wire can be written down.
struct ServiceReply
{
    QByteArray bytes;
    bool closes = false;                  // the connection, after the last byte; else it is kept
    std::chrono::milliseconds perByte{0}; // waited before each byte
    bool isOnce = false;                  // later requests are answered as without a script
};

/// A sound HTTP answer; `headers` are whole lines with their line ends.
ServiceReply httpReply(const QByteArray &body, const QByteArray &status = "200 OK",
                       const QByteArray &headers = {});

/// No answer: it breaks off behind its first line. After nothing at all a read would be sent once more.
inline ServiceReply cutReply()
{
    return {.bytes = "HTTP/1.1 200 OK\r\n", .closes = true};
}

/// A real HTTP service on loopback, in threads of its own, that answers by script and keeps what it was sent.
/// Every member may be called at any time.
class LoopbackService
{
public:
    LoopbackService();
    ~LoopbackService();
    LoopbackService(const LoopbackService &) = delete;
    LoopbackService &operator=(const LoopbackService &) = delete;

    QByteArray url() const;

    /// From now on requests of that kind (their p1) get this body; without a script they get "Error".
    void answer(const QByteArray &kind, const QByteArray &body) { answer(kind, httpReply(body)); }
    void answer(const QByteArray &kind, const ServiceReply &reply);

    /// While held, requests are received and wait for their answer.
    void hold(bool held = true);
    void release() { hold(/*held=*/false); }

    /// Every request to the last byte, in the order they came; what came of a broken one too.
    QList<QByteArray> requests() const;
    /// Their bodies alone.
    QList<QByteArray> bodies() const;

    std::size_t openConnections() const;

private:
    void acceptConnections();
    void serve(int connection);
    ServiceReply replyTo(const QByteArray &request);
    /// Whether the connection is still good for another request.
    bool send(int connection, const ServiceReply &reply);

    const int m_listener;
    quint16 m_port = 0;
    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    bool m_isStopping = false;
    bool m_isHeld = false;
    std::map<QByteArray, ServiceReply> m_script;
    QList<QByteArray> m_requests;
    std::vector<int> m_connections;
    std::vector<std::jthread> m_servers;
    std::jthread m_acceptor;
};

/// An address on loopback that nobody listens at: the port belongs to a protocol long out of use.
inline QByteArray refusingUrl()
{
    return "http://127.0.0.1:1/tarvex/";
}
