#include "CurlExchange.h"
#include "LoopbackService.h"
#include "Samples.h"
#include "ServiceFakes.h"

#include <QElapsedTimer>

using namespace std::chrono_literals;

namespace {

const QByteArray form = "p1=get-sets&p2=A&p3=B";

struct Wire
{
    std::chrono::milliseconds deadline = 20s;
    LoopbackService service{};
    RecordingWait wait{};
    CurlExchange exchange{service.url(), deadline, wait};
};

} // namespace

class CurlExchangeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneRequestIsTheseBytes()
    {
        Wire wire;
        qputenv("http_proxy", refusingUrl()); // is none of ours
        const TVXAnswer answer = wire.exchange.post(form);
        qunsetenv("http_proxy");
        QCOMPARE(answer.data, QByteArray("Error"));
        const QByteArray large = form + QByteArray(1'100'000, 'x');
        QCOMPARE(wire.exchange.post(large).data, QByteArray("Error"));
        const QByteArray host = wire.service.url().split('/').at(2);
        const QByteArray head = "POST /tarvex/ HTTP/1.1\r\nHost: " + host +
                                "\r\nAccept: */*\r\nContent-Length: 21\r\n"
                                "Content-Field: application/x-www-form-urlencoded\r\n"
                                "User-Agent: Tarvex Cloud Mac OS X Client v.0.1.0\r\n"
                                "Content-Type: application/x-www-form-urlencoded\r\n\r\n";
        const QByteArray headOfLarge = QByteArray(head).replace("h: 21", "h: 1100021");
        QCOMPARE(wire.service.requests(), (QList<QByteArray>{head + form, headOfLarge + large}));
    }

    void everyReplyHasOneOutcome_data() { addSampleRows("replies.txt"); }
    void everyReplyHasOneOutcome()
    {
        const auto [reply, then, outcome] = sampleRow<3>();
        Wire wire{outcome.endsWith("in time") ? 300ms : 20'000ms};
        wire.service.answer("get-sets", {reply, then == "closed", std::chrono::milliseconds(then.toInt())});

        QElapsedTimer clock;
        clock.start();
        const TVXAnswer answer = wire.exchange.post(form);

        QVERIFY(wire.wait.turns <= clock.elapsed() / 10 + 1); // 10 ms each at least
        if (outcome.startsWith("- "))
            QVERIFY2(!answer.data && answer.errorDescription.toUtf8().contains(outcome.sliced(2)),
                     qPrintable(answer.errorDescription));
        else
            QCOMPARE(answer.data, outcome);
        QCOMPARE(wire.service.bodies(), {form});
        QCOMPARE(wire.wait.ended, 1);
    }

    void unreachableServicesAreDescribed_data() { addSampleRows("unreachable.txt"); }
    void unreachableServicesAreDescribed()
    {
        const auto [url, said] = sampleRow<2>();
        RecordingWait wait;
        const TVXAnswer answer = CurlExchange(url, /*deadline=*/20s, wait).post(form);
        QVERIFY2(!answer.data && answer.errorDescription.toUtf8().contains(said),
                 qPrintable(answer.errorDescription));
    }

    void aKeptConnectionThatDiesTakesASecondCopyOfReadsOnly_data() { addSampleRows("dying.txt"); }
    void aKeptConnectionThatDiesTakesASecondCopyOfReadsOnly()
    {
        const auto [purpose, second, last, dies, outcome] = sampleRow<5>();
        Wire wire;
        for (const char *kind : {"x", ""})
            wire.service.answer(kind, {last, /*closes=*/true, /*perByte=*/0ms, dies == "once"});

        QVERIFY(wire.exchange.post(form).data);
        const TVXAnswer answer =
            wire.exchange.post(second, purpose == "reads" ? TVXPurpose::Reading : TVXPurpose::Writing);
        const qsizetype copies = wire.service.bodies().count(second);
        QVERIFY(wire.exchange.post(form).data);

        QCOMPARE(QByteArray::number(copies) + ' ' + answer.data.value_or("lost"), outcome);
        QCOMPARE(answer.errorDescription.contains(u"was lost"), !answer.data);
        QCOMPARE(wire.service.bodies(), QList<QByteArray>{form} << QList<QByteArray>(copies, second) << form);
    }

    void largeAnswersCountUpToTheLimit()
    {
        constexpr qsizetype limit = qsizetype(128) * 1024 * 1024;
        for (const qsizetype size : {qsizetype(20'000'000), limit, limit + 1}) {
            Wire wire;
            wire.service.answer("get-sets", QByteArray(size, 'x'));
            const TVXAnswer answer = wire.exchange.post(form);
            QCOMPARE(answer.data ? answer.data->size() : -1, size > limit ? -1 : size);
            QCOMPARE(answer.errorDescription.contains(u"too large"), size > limit);
            QCOMPARE(wire.service.bodies(), {form});
        }
    }

    void aRequestDuringTheWaitIsNotSentAndOneAfterItIs()
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
        QVERIFY((wire.service.bodies() == QList<QByteArray>{form, "p1=after"}));
        QVERIFY(wire.wait.turns > turnOfRelease); // what was typed until the end is dropped too
        QCOMPARE(wire.wait.ended, 2);
    }
};

QTEST_GUILESS_MAIN(CurlExchangeTest)
#include "CurlExchangeTest.moc"
