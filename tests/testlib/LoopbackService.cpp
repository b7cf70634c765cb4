#include "LoopbackService.h"

#include <algorithm>
#include <QTcpSocket>
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

LoopbackService::LoopbackService()
{
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("cannot listen on loopback");
    m_url = "http://127.0.0.1:" + QByteArray::number(m_server.serverPort()) + "/tarvex/";
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { acceptConnections(); });
    m_server.moveToThread(&m_thread);
    m_thread.start();
}

LoopbackService::~LoopbackService()
{
    inItsThread([this] {
        qDeleteAll(m_server.findChildren<QTcpSocket *>());
        m_server.close();
    });
    m_thread.quit();
    m_thread.wait();
}

void LoopbackService::inItsThread([[maybe_unused]] const std::function<void()> &action) const
{
#ifndef __clang_analyzer__ // which does not see that the receiver deletes the call
    QMetaObject::invokeMethod(const_cast<QTcpServer *>(&m_server), action, Qt::BlockingQueuedConnection);
#endif
}

void LoopbackService::answer(const QByteArray &kind, const ServiceReply &reply)
{
    inItsThread([&] { m_script[kind] = reply; });
}

void LoopbackService::hold(bool held)
{
    inItsThread([&] {
        m_isHeld = held;
        for (const auto &[socket, request] : std::exchange(m_waiting, {}))
            take(socket, request);
    });
}

QList<QByteArray> LoopbackService::requests() const
{
    QList<QByteArray> requests;
    inItsThread([&] { requests = m_requests; });
    return requests;
}

QList<QByteArray> LoopbackService::bodies() const
{
    QList<QByteArray> bodies = requests();
    std::transform(bodies.cbegin(), bodies.cend(), bodies.begin(), bodyOf);
    return bodies;
}

// Clients send nothing more before they have their answer; if one did, it would show as part of the request.
void LoopbackService::acceptConnections()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        const auto received = std::make_shared<QByteArray>();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [=, this] {
            received->append(socket->readAll());
            if (!isComplete(*received))
                return;
            m_requests.append(*received);
            take(socket, std::exchange(*received, {}));
        });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, [=, this] {
            if (!received->isEmpty())
                m_requests.append(*received);
            socket->deleteLater();
        });
    }
}

void LoopbackService::take(const QPointer<QTcpSocket> &socket, const QByteArray &request)
{
    if (m_isHeld) {
        m_waiting.append({socket, request});
        return;
    }
    const QByteArray kind = bodyOf(request).split('&').first().mid(3); // behind "p1="
    const ServiceReply reply = m_script.value(kind, httpReply("Error"));
    if (reply.isOnce)
        m_script.remove(kind);
    if (!socket)
        return;
    const bool isSlow = reply.perByte.count() > 0;
    for (qsizetype sent = 0, step = isSlow ? 1 : reply.bytes.size(); sent < reply.bytes.size();
         sent += step) {
        socket->write(reply.bytes.constData() + sent, step);
        if (isSlow && !socket->waitForReadyRead(static_cast<int>(reply.perByte.count())) &&
            !socket->isValid())
            return; // nobody waits any longer
    }
    if (reply.closes)
        socket->disconnectFromHost();
}
