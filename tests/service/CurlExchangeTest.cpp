#include "CurlExchange.h"
#include "LoopbackService.h"
#include "ServiceFakes.h"

#include <QTest>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

const QByteArray body = "p1=get-sets&p2=A&p3=B";
constexpr auto patient = 20s;
constexpr auto impatient = 300ms;

ServiceReply cutAfter(const QByteArray &bytes)
{
    return {bytes, /*closes=*/true};
}

/// "hello" as gzip, by a common tool.
QByteArray gzippedHello()
{
    return QByteArray::fromHex("1f8b0800000000000203cb48cdc9c9070086a6103605000000");
}

} // namespace

class CurlExchangeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneRequestIsTheseBytes();
    void anyCompleteAnswerCounts_data();
    void anyCompleteAnswerCounts();
    void anIncompleteAnswerIsNone_data();
    void anIncompleteAnswerIsNone();
    void anUnreachableServiceIsDescribed_data();
    void anUnreachableServiceIsDescribed();
    void aKeptConnectionThatDiesTakesNoSecondCopy_data();
    void aKeptConnectionThatDiesTakesNoSecondCopy();
    void aConnectionClosedWhileIdleIsReplaced();
    void anAnswerBeyondTheLimitIsNone_data();
    void anAnswerBeyondTheLimitIsNone();
    void largeBodiesAndAnswersArriveWhole();
    void environmentDoesNotRedirectRequests();
    void theApplicationTurnsWhileItWaitsAndOnceMoreAtTheEnd();
    void aSecondRequestDuringTheWaitIsNotSent();
    void theNextRequestMayBeSentWhenTheWaitEnds();
};

void CurlExchangeTest::oneRequestIsTheseBytes()
{
    LoopbackService service;
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);

    QCOMPARE(exchange.post(body).data, QByteArray("Error"));

    const QByteArray host = service.url().sliced(7).split('/').first();
    QCOMPARE(service.requests(), QList<QByteArray>{"POST /tarvex/ HTTP/1.1\r\n"
                                                   "Host: " +
                                                   host +
                                                   "\r\n"
                                                   "Accept: */*\r\n"
                                                   "Accept-Encoding: gzip, deflate\r\n"
                                                   "Content-Length: 21\r\n"
                                                   "Content-Field: application/x-www-form-urlencoded\r\n"
                                                   "User-Agent: Tarvex Cloud Mac OS X Client v.0.1.0\r\n"
                                                   "Content-Type: application/x-www-form-urlencoded\r\n"
                                                   "\r\n" +
                                                   body});
}

void CurlExchangeTest::anyCompleteAnswerCounts_data()
{
    QTest::addColumn<ServiceReply>("reply");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("ok") << httpReply("<a/>") << QByteArray("<a/>");
    QTest::newRow("empty body") << httpReply("") << QByteArray("");
    QTest::newRow("not found, with a body") << httpReply("no", "404 Not Found") << QByteArray("no");
    QTest::newRow("server error, with a body") << httpReply("oh", "500 Oops") << QByteArray("oh");
    QTest::newRow("asks for credentials")
        << httpReply("who", "401 Unauthorized", "WWW-Authenticate: Basic\r\n") << QByteArray("who");
    for (const char *status : {"301 Moved", "302 Found", "303 See Other", "307 Temporary", "308 Permanent"}) {
        QTest::newRow(status) << httpReply("there", status, "Location: /elsewhere/\r\n")
                              << QByteArray("there");
    }
    QTest::newRow("gzip") << httpReply(gzippedHello(), "200 OK", "Content-Encoding: gzip\r\n")
                          << QByteArray("hello");
    QTest::newRow("chunked") << ServiceReply{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                             "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"}
                             << QByteArray("abcde");
    QTest::newRow("until the connection closes")
        << cutAfter("HTTP/1.0 200 OK\r\n\r\nabc") << QByteArray("abc");
    QTest::newRow("after an interim answer")
        << ServiceReply{"HTTP/1.1 100 Continue\r\n\r\n" + httpReply("x").bytes} << QByteArray("x");
    QTest::newRow("slow but in time") << ServiceReply{httpReply("x").bytes, false, 2ms} << QByteArray("x");
}

void CurlExchangeTest::anyCompleteAnswerCounts()
{
    QFETCH(ServiceReply, reply);
    QFETCH(QByteArray, expected);
    LoopbackService service;
    service.answer("get-sets", reply);
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);

    const TVXAnswer answer = exchange.post(body);

    QVERIFY2(answer.data, qPrintable(answer.errorDescription));
    QVERIFY(!answer.data->isNull());
    QCOMPARE(*answer.data, expected);
    QCOMPARE(service.bodies(), {body});
}

void CurlExchangeTest::anIncompleteAnswerIsNone_data()
{
    QTest::addColumn<ServiceReply>("reply");
    QTest::addColumn<QString>("said");
    const QString lost = QStringLiteral("was lost before the answer was complete");
    const QString late = QStringLiteral("did not answer in time");
    const QString strange = QStringLiteral("is not a web service");
    const QByteArray sound = httpReply("0123456789").bytes;

    QTest::newRow("closed before the headers") << cutAfter("") << lost;
    QTest::newRow("closed inside the status line") << cutAfter("HTTP/1.1 20") << lost;
    QTest::newRow("closed inside the headers") << cutAfter("HTTP/1.1 200 OK\r\nContent-Le") << lost;
    QTest::newRow("closed behind a header line")
        << cutAfter("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n") << lost;
    QTest::newRow("closed after an interim answer") << cutAfter("HTTP/1.1 100 Continue\r\n\r\n") << lost;
    QTest::newRow("closed inside the body") << cutAfter(sound.chopped(3)) << lost;
    QTest::newRow("closed inside a chunk")
        << cutAfter("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nab") << lost;
    QTest::newRow("silence") << ServiceReply{} << late;
    QTest::newRow("one byte at a time, too slowly") << ServiceReply{sound, false, 40ms} << late;
    QTest::newRow("stops inside the body") << ServiceReply{sound.chopped(3)} << late;
    QTest::newRow("another protocol") << cutAfter("220 mail ready\r\n") << strange;
    QTest::newRow("broken gzip") << httpReply("not gzip", "200 OK", "Content-Encoding: gzip\r\n")
                                 << QStringLiteral("failed (");
}

void CurlExchangeTest::anIncompleteAnswerIsNone()
{
    QFETCH(ServiceReply, reply);
    QFETCH(QString, said);
    LoopbackService service;
    service.answer("get-sets", reply);
    RecordingWait wait;
    CurlExchange exchange(service.url(), impatient, wait);

    const auto started = Clock::now();
    const TVXAnswer answer = exchange.post(body);

    QVERIFY(!answer.data);
    QVERIFY2(answer.errorDescription.contains(said), qPrintable(answer.errorDescription));
    QVERIFY(Clock::now() - started < 10 * impatient);
    QCOMPARE(service.bodies(), {body});
    QCOMPARE(wait.ended, 1);
}

void CurlExchangeTest::anUnreachableServiceIsDescribed_data()
{
    QTest::addColumn<QByteArray>("url");
    QTest::addColumn<QString>("said");

    QTest::newRow("refused") << refusingUrl()
                             << QStringLiteral("Could not connect to the service at 127.0.0.1:");
    QTest::newRow("host not found") << QByteArray("http://no-such-host.invalid/tarvex/")
                                    << QStringLiteral("no-such-host.invalid, could not be found");
    QTest::newRow("not an http address")
        << QByteArray("file:///etc/hostname") << QStringLiteral("not a web service");
    QTest::newRow("no address at all") << QByteArray("http://") << QStringLiteral("failed (");
}

void CurlExchangeTest::anUnreachableServiceIsDescribed()
{
    QFETCH(QByteArray, url);
    QFETCH(QString, said);
    RecordingWait wait;
    CurlExchange exchange(url, patient, wait);

    const TVXAnswer answer = exchange.post(body);

    QVERIFY(!answer.data);
    QVERIFY2(answer.errorDescription.contains(said), qPrintable(answer.errorDescription));
}

void CurlExchangeTest::aKeptConnectionThatDiesTakesNoSecondCopy_data()
{
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QByteArray>("last");
    const QByteArray save = "p1=create-sets&p2=A&p3=B&p4=New";

    QTest::newRow("before the answer") << save << QByteArray();
    QTest::newRow("inside the status line") << save << QByteArray("HTTP/1.1 2");
    QTest::newRow("after an interim answer") << save << QByteArray("HTTP/1.1 100 Continue\r\n\r\n");
    QTest::newRow("with a body of many pieces") << save + QByteArray(3'000'000, 'x') << QByteArray();
    QTest::newRow("without a body") << QByteArray("") << QByteArray();
}

void CurlExchangeTest::aKeptConnectionThatDiesTakesNoSecondCopy()
{
    QFETCH(QByteArray, second);
    QFETCH(QByteArray, last);
    LoopbackService service;
    service.answer("create-sets", cutAfter(last));
    service.answer("", cutAfter(last));
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);

    QVERIFY(exchange.post(body).data);
    const TVXAnswer answer = exchange.post(second);
    QVERIFY(!answer.data);
    QVERIFY2(answer.errorDescription.contains(u"was lost"), qPrintable(answer.errorDescription));
    QVERIFY(exchange.post(body).data);

    const QList<QByteArray> sent = {body, second, body};
    QVERIFY(service.bodies() == sent);
}

void CurlExchangeTest::aConnectionClosedWhileIdleIsReplaced()
{
    LoopbackService service;
    service.answer("get-sets", cutAfter(httpReply("x").bytes));
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);

    QCOMPARE(exchange.post(body).data, QByteArray("x"));
    QTRY_COMPARE(service.openConnections(), std::size_t(0));
    QCOMPARE(exchange.post(body).data, QByteArray("x"));

    const QList<QByteArray> sent = {body, body};
    QCOMPARE(service.bodies(), sent);
}

void CurlExchangeTest::anAnswerBeyondTheLimitIsNone_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("isAnswer");
    constexpr qsizetype limit = qsizetype(128) * 1024 * 1024;

    QTest::newRow("at the limit") << limit << true;
    QTest::newRow("one byte more") << limit + 1 << false;
}

void CurlExchangeTest::anAnswerBeyondTheLimitIsNone()
{
    QFETCH(qsizetype, size);
    QFETCH(bool, isAnswer);
    LoopbackService service;
    service.answer("get-sets", QByteArray(size, 'x'));
    RecordingWait wait;
    CurlExchange exchange(service.url(), 60s, wait);

    const TVXAnswer answer = exchange.post(body);

    QCOMPARE(answer.data.has_value(), isAnswer);
    QCOMPARE(answer.errorDescription.contains(u"too large"), !isAnswer);
}

void CurlExchangeTest::largeBodiesAndAnswersArriveWhole()
{
    const QByteArray answer = QByteArray("0123456789abcdef\n").repeated(20'000'000 / 17);
    const QByteArray large = body + "&p4=" + QByteArray("goal;").repeated(1'000'000);
    LoopbackService service;
    service.answer("get-sets", answer);
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);

    QVERIFY(exchange.post(large).data == answer);

    QVERIFY(service.bodies() == QList<QByteArray>{large});
}

void CurlExchangeTest::environmentDoesNotRedirectRequests()
{
    LoopbackService service;
    qputenv("http_proxy", refusingUrl());
    qputenv("ALL_PROXY", refusingUrl());
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);

    const TVXAnswer answer = exchange.post(body);

    qunsetenv("http_proxy");
    qunsetenv("ALL_PROXY");
    QVERIFY2(answer.data, qPrintable(answer.errorDescription));
}

void CurlExchangeTest::theApplicationTurnsWhileItWaitsAndOnceMoreAtTheEnd()
{
    LoopbackService service;
    service.hold();
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);
    const auto started = Clock::now();
    wait.onTurn = [&] {
        if (Clock::now() - started > 200ms)
            service.release();
    };

    QVERIFY(exchange.post(body).data);

    const auto lasted = Clock::now() - started;
    QVERIFY(wait.turns >= 3); // the spinner moves
    QVERIFY(wait.turns <= lasted / 10ms + 1);
    QCOMPARE(wait.started, 1);
    QCOMPARE(wait.ended, 1);
}

void CurlExchangeTest::aSecondRequestDuringTheWaitIsNotSent()
{
    LoopbackService service;
    service.hold();
    RecordingWait wait;
    CurlExchange exchange(service.url(), patient, wait);
    std::optional<TVXAnswer> second;
    wait.onTurn = [&] {
        if (!second) {
            QVERIFY(exchange.isBusy());
            second = exchange.post("p1=delete-sets");
            service.release();
        }
    };

    const TVXAnswer first = exchange.post(body);

    QCOMPARE(first.data, QByteArray("Error"));
    QVERIFY(second && !second->data);
    QVERIFY(second->errorDescription.contains(u"still under way"));
    QCOMPARE(service.bodies(), {body});
    QCOMPARE(wait.started, 1);
    QVERIFY(!exchange.isBusy());
}

void CurlExchangeTest::theNextRequestMayBeSentWhenTheWaitEnds()
{
    class SendsAtTheEnd : public RecordingWait
    {
    public:
        void requestEnded() override
        {
            if (++ended == 1)
                next = exchange->post("p1=get-areas");
        }
        CurlExchange *exchange = nullptr;
        std::optional<TVXAnswer> next;
    };
    LoopbackService service;
    service.answer("get-sets", "first");
    service.answer("get-areas", "second");
    SendsAtTheEnd wait;
    CurlExchange exchange(service.url(), patient, wait);
    wait.exchange = &exchange;

    QCOMPARE(exchange.post(body).data, QByteArray("first"));

    QVERIFY(wait.next);
    QCOMPARE(wait.next->data, QByteArray("second"));
    QCOMPARE(wait.ended, 2);
}

QTEST_GUILESS_MAIN(CurlExchangeTest)
#include "CurlExchangeTest.moc"
