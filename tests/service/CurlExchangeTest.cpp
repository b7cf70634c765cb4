#include "CurlExchange.h"
#include "LoopbackService.h"
#include "ServiceFakes.h"

#include <QTest>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

const QByteArray form = "p1=get-sets&p2=A&p3=B";
constexpr auto impatient = 300ms;

struct Wire
{
    explicit Wire(const QByteArray &url = {}, std::chrono::milliseconds deadline = 20s)
        : exchange(url.isEmpty() ? service.url() : url, deadline, wait)
    {
    }

    LoopbackService service;
    RecordingWait wait;
    CurlExchange exchange;
};

ServiceReply cutAfter(const QByteArray &bytes)
{
    return {bytes, /*closes=*/true};
}

} // namespace

class CurlExchangeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneRequestIsTheseBytes();
    void everyReplyHasOneOutcome_data();
    void everyReplyHasOneOutcome();
    void unreachableServicesAreDescribed_data();
    void unreachableServicesAreDescribed();
    void aKeptConnectionThatDiesTakesNoSecondCopy_data();
    void aKeptConnectionThatDiesTakesNoSecondCopy();
    void aConnectionClosedWhileIdleIsReplaced();
    void largeAnswersCountUpToTheLimit_data();
    void largeAnswersCountUpToTheLimit();
    void aRequestDuringTheWaitIsNotSentAndOneAfterItIs();
};

void CurlExchangeTest::oneRequestIsTheseBytes()
{
    Wire wire;
    qputenv("http_proxy", refusingUrl()); // is none of ours

    QCOMPARE(wire.exchange.post(form).data, QByteArray("Error"));

    qunsetenv("http_proxy");
    const QByteArray host = wire.service.url().sliced(7).split('/').first();
    const QByteArray head = "POST /tarvex/ HTTP/1.1\r\nHost: " + host +
                            "\r\nAccept: */*\r\nAccept-Encoding: gzip, deflate\r\nContent-Length: 21\r\n"
                            "Content-Field: application/x-www-form-urlencoded\r\n"
                            "User-Agent: Tarvex Cloud Mac OS X Client v.0.1.0\r\n"
                            "Content-Type: application/x-www-form-urlencoded\r\n\r\n";
    QCOMPARE(wire.service.requests(), {head + form});
}

void CurlExchangeTest::everyReplyHasOneOutcome_data()
{
    QTest::addColumn<ServiceReply>("reply");
    QTest::addColumn<QString>("outcome"); // the answer, or words of the description after a dash
    const auto row = [](const char *name, const ServiceReply &reply, const char *outcome) {
        QTest::newRow(name) << reply << QString::fromUtf8(outcome);
    };
    row("ok", httpReply("<a/>"), "<a/>");
    row("empty body", httpReply(""), "");
    row("not found", httpReply("no", "404 Not Found"), "no");
    row("server error", httpReply("oh", "500 Oops"), "oh");
    row("asks for credentials", httpReply("who", "401 No", "WWW-Authenticate: Basic\r\n"), "who");
    for (const char *status : {"301 Moved", "302 Found", "303 Other", "307 Temporary", "308 Permanent"})
        row(status, httpReply("there", status, "Location: /elsewhere/\r\n"), "there");
    const QByteArray gzippedHello = QByteArray::fromHex("1f8b0800000000000203cb48cdc9c9070086a6103605000000");
    row("gzip", httpReply(gzippedHello, "200 OK", "Content-Encoding: gzip\r\n"), "hello");
    row("broken gzip", httpReply("not gzip", "200 OK", "Content-Encoding: gzip\r\n"), "- failed (");
    const QByteArray chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n";
    row("chunked", {chunked + "2\r\nde\r\n0\r\n\r\n"}, "abcde");
    row("closed inside a chunk", cutAfter(chunked + "2\r\nd"), "- was lost");
    row("until the connection closes", cutAfter("HTTP/1.0 200 OK\r\n\r\nabc"), "abc");
    row("after an interim answer", {"HTTP/1.1 100 Continue\r\n\r\n" + httpReply("x").bytes}, "x");
    row("closed behind an interim answer", cutAfter("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nDa"),
        "- was lost");
    row("closed before the headers", cutAfter(""), "- was lost");
    row("closed inside the status line", cutAfter("HTTP/1.1 20"), "- was lost");
    row("closed inside the headers", cutAfter("HTTP/1.1 200 OK\r\nContent-Le"), "- was lost");
    row("closed behind a header line", cutAfter("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n"), "- was lost");
    const QByteArray sound = httpReply("0123456789").bytes;
    row("closed inside the body", cutAfter(sound.chopped(3)), "- was lost");
    row("stops inside the body", {sound.chopped(3)}, "- did not answer in time");
    row("silence", {}, "- did not answer in time");
    row("byte by byte, too slowly", {sound, false, impatient / 10}, "- did not answer in time");
    row("byte by byte, in time", {sound, false, 1ms}, "0123456789");
    row("another protocol", cutAfter("220 mail ready\r\n"), "- is not a web service");
}

void CurlExchangeTest::everyReplyHasOneOutcome()
{
    QFETCH(ServiceReply, reply);
    QFETCH(QString, outcome);
    Wire wire({}, impatient);
    wire.service.answer("get-sets", reply);

    const auto started = Clock::now();
    const TVXAnswer answer = wire.exchange.post(form);

    QVERIFY(wire.wait.turns <= (Clock::now() - started) / 10ms + 1);
    if (outcome.startsWith(u'-'))
        QVERIFY2(!answer.data && answer.errorDescription.contains(outcome.sliced(1)),
                 qPrintable(answer.errorDescription));
    else
        QCOMPARE(answer.data, outcome.toUtf8());
    QCOMPARE(wire.service.bodies(), {form});
    QCOMPARE(wire.wait.ended, 1);
}

void CurlExchangeTest::unreachableServicesAreDescribed_data()
{
    QTest::addColumn<QByteArray>("url");
    QTest::addColumn<QString>("said");

    QTest::newRow("refused") << refusingUrl()
                             << QStringLiteral("Could not connect to the service at 127.0.0.1:");
    QTest::newRow("host not found") << QByteArray("http://no-such-host.invalid/tarvex/")
                                    << QStringLiteral("no-such-host.invalid, could not be found");
    QTest::newRow("not http") << QByteArray("file:///etc/hostname") << QStringLiteral("not a web service");
}

void CurlExchangeTest::unreachableServicesAreDescribed()
{
    QFETCH(QByteArray, url);
    QFETCH(QString, said);
    const TVXAnswer answer = Wire(url).exchange.post(form);
    QVERIFY(!answer.data);
    QVERIFY2(answer.errorDescription.contains(said), qPrintable(answer.errorDescription));
}

void CurlExchangeTest::aKeptConnectionThatDiesTakesNoSecondCopy_data()
{
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QByteArray>("last");

    QTest::newRow("before the answer") << QByteArray("p1=save") << QByteArray();
    QTest::newRow("inside the status line") << QByteArray("p1=save") << QByteArray("HTTP/1.1 2");
    QTest::newRow("with a body of many pieces") << "p1=save&p4=" + QByteArray(3'000'000, 'x') << QByteArray();
    QTest::newRow("without a body") << QByteArray("") << QByteArray();
}

void CurlExchangeTest::aKeptConnectionThatDiesTakesNoSecondCopy()
{
    QFETCH(QByteArray, second);
    QFETCH(QByteArray, last);
    Wire wire;
    wire.service.answer("save", cutAfter(last));
    wire.service.answer("", cutAfter(last));

    QVERIFY(wire.exchange.post(form).data);
    QVERIFY(wire.exchange.post(second).errorDescription.contains(u"was lost"));
    QVERIFY(wire.exchange.post(form).data);

    QVERIFY((wire.service.bodies() == QList<QByteArray>{form, second, form}));
}

void CurlExchangeTest::aConnectionClosedWhileIdleIsReplaced()
{
    Wire wire;
    wire.service.answer("get-sets", cutAfter(httpReply("x").bytes));

    QVERIFY(wire.exchange.post(form).data);
    QTRY_COMPARE(wire.service.openConnections(), std::size_t(0));
    QCOMPARE(wire.exchange.post(form).data, QByteArray("x"));

    QCOMPARE(wire.service.bodies(), QList<QByteArray>(2, form));
}

void CurlExchangeTest::largeAnswersCountUpToTheLimit_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("isAnswer");
    constexpr qsizetype limit = qsizetype(128) * 1024 * 1024;

    QTest::newRow("20 MB") << qsizetype(20'000'000) << true;
    QTest::newRow("at the limit") << limit << true;
    QTest::newRow("one byte more") << limit + 1 << false;
}

void CurlExchangeTest::largeAnswersCountUpToTheLimit()
{
    QFETCH(qsizetype, size);
    QFETCH(bool, isAnswer);
    Wire wire;
    wire.service.answer("get-sets", QByteArray(size, 'x'));

    const TVXAnswer answer = wire.exchange.post(form);

    QCOMPARE(answer.data ? answer.data->size() : -1, isAnswer ? size : -1);
    QCOMPARE(answer.errorDescription.contains(u"too large"), !isAnswer);
}

void CurlExchangeTest::aRequestDuringTheWaitIsNotSentAndOneAfterItIs()
{
    Wire wire;
    wire.service.hold();
    TVXAnswer during;
    constexpr int turnOfRelease = 5;
    wire.wait.onTurn = [&] {
        during = wire.exchange.post("p1=during");
        if (wire.wait.turns == turnOfRelease)
            wire.service.release();
    };
    TVXAnswer after;
    wire.wait.onEnd = [&] {
        if (wire.wait.ended == 1)
            after = wire.exchange.post("p1=after");
    };

    QCOMPARE(wire.exchange.post(form).data, QByteArray("Error"));

    QVERIFY(during.errorDescription.contains(u"still under way"));
    QCOMPARE(after.data, QByteArray("Error"));
    const QList<QByteArray> sent = {form, "p1=after"};
    QCOMPARE(wire.service.bodies(), sent);
    QVERIFY(wire.wait.turns > turnOfRelease); // what was typed until the end is dropped too
    QCOMPARE(wire.wait.ended, 2);
}

QTEST_GUILESS_MAIN(CurlExchangeTest)
#include "CurlExchangeTest.moc"
