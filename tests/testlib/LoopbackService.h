#pragma once

#include <chrono>
#include <functional>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QThread>
#include <utility>

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

/// A real HTTP service on loopback, in a thread of its own, that answers by script and keeps what it was
/// sent.
class LoopbackService
{
public:
    LoopbackService();
    ~LoopbackService();
    LoopbackService(const LoopbackService &) = delete;
    LoopbackService &operator=(const LoopbackService &) = delete;

    const QByteArray &url() const { return m_url; }

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

    qsizetype openConnections() const;

private:
    void inItsThread(const std::function<void()> &action) const;
    void acceptConnections();
    /// Answers the request, or lets it wait while that is asked for.
    void take(const QPointer<QTcpSocket> &socket, const QByteArray &request);

    QByteArray m_url;
    QThread m_thread; // in which all below lives
    QTcpServer m_server;
    bool m_isHeld = false;
    QHash<QByteArray, ServiceReply> m_script;
    QList<QByteArray> m_requests;
    QList<std::pair<QPointer<QTcpSocket>, QByteArray>> m_waiting;
};

/// An address on loopback that nobody listens at: the port belongs to a protocol long out of use.
inline QByteArray refusingUrl()
{
    return "http://127.0.0.1:1/tarvex/";
}
