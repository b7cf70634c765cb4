#include "Client.h"

#include "Announcement.h"
#include "RandomGoalWindowController.h"
#include "SliceMark.h"
#include "WrappedLabel.h"

namespace {

const QByteArray getGoal = "p1=get-random-goal" + annsDigests + "&p4=7";
const QByteArray setChecked = "p1=set-checked-area-percent" + annsDigests + "&p5=";

QByteArray goal(const QByteArray &id, const QByteArray &name, const QByteArray &area)
{
    return xmlAnswer({"id", "name", "area"}, {{id, name, area}});
}

// A signed-in client of nine areas, whose random-goal sheet was opened.
struct OpenGoal : SheetClient
{
    explicit OpenGoal(const ServiceReply &first = httpReply(goal("12", "Run", "3")))
    {
        service.answer("get-areas",
                       areasAnswer({"Health", "R &amp; D", "Fun", "Home", "5", "6", "7", "8", "9"}));
        service.answer("get-random-goal", first);
        document = openSignedIn();
        sheet = document->wndNextGoals();
        random = sheet->findChild<RandomGoalWindowController *>();
        trigger(document, "actionRandomGoal");
        if (!QTest::qWaitFor([this] { return service.bodies().size() > 3 && !controller.isBusy(); }))
            qFatal("nothing was fetched");
    }

    QString hint() const { return sheet->findChild<QLabel *>(u"labelRandomGoalHint"_s)->text(); }
    QString said() const { return sheet->findChild<Announcement *>()->accessibleName(); }

    RandomGoalWindowController *random;
};

} // namespace

class RandomGoalFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aGoalIsShownOrItsAbsenceExplained_data() { addSampleRows("random-goals.txt"); }
    void aGoalIsShownOrItsAbsenceExplained()
    {
        const auto [answer, expected] = sampleRow<2>();
        OpenGoal open(answer == "(none)" ? cutReply() : httpReply(answer));
        QCOMPARE(open.sent(), QList<QByteArray>{getGoal});
        const WrappedLabel *labelGoal = open.random->labelGoal();
        const bool mayBeDone = answer.contains("<id>12") && !open.hint().contains(u"read"_s);
        const QString host = QString::fromLatin1(open.service.url()).section(u'/', 2, 2);
        const QStringList shown = {open.random->labelArea()->text(), labelGoal->text(), open.hint()};
        QCOMPARE(shown.join(u'/').replace(host, u"HOST"_s).toUtf8(), expected);
        auto *mark = open.sheet->findChild<SliceMark *>();
        const bool isOfFirst = answer.contains("<area>1<"); // else of the second, if anything is marked
        QCOMPARE(mark->isVisible(), mayBeDone && !answer.contains("99"));
        QVERIFY(!mark->isVisible() || Client::shows(mark, isOfFirst ? 0xb699c9 : 0xf5bf39));
        QCOMPARE(open.sheet->focusWidget(), open.button("Next Goal"));
        QCOMPARE(labelGoal->isVisible(), mayBeDone);
        QCOMPARE(open.button("Mark as Done")->isEnabled(), mayBeDone);
        QVERIFY(!open.random->progress()->isAnimating());
        const QStringList said = {open.hint(), mayBeDone ? labelGoal->text() : QString(),
                                  mark->isVisible() ? open.random->labelArea()->text() : QString()};
        QTRY_COMPARE(open.said(), said.join(u'\n').trimmed());
    }

    void onlyTheUserFetchesAgainAndAnIncompleteAnswerChangesNothing()
    {
        OpenGoal open(httpReply("<a/>"));
        open.service.answer("get-random-goal", goal("12", "Run", "3"));
        open.click("Next Goal");
        const QSize size = open.sheet->size();
        open.random->windowDidBecomeKey();
        QCoreApplication::processEvents();
        QCOMPARE(open.sent(), (QList<QByteArray>{getGoal, getGoal}));
        open.service.answer("get-random-goal", goal("12", QByteArray(10'000, 'x'), "3"));
        open.click("Next Goal");
        QCoreApplication::processEvents();
        QCOMPARE(open.sheet->size(), size);
        open.service.answer("get-random-goal", QByteArray("<a/>"));
        open.click("Next Goal");
        QCOMPARE(open.random->labelGoal()->text().size(), 10'000);
        QVERIFY(open.hint().contains(u"incomplete"));
        QTRY_COMPARE(open.said(), open.hint());

        open.service.answer("get-random-goal", QByteArray("Error"));
        open.click("Mark as Done");
        QCOMPARE(open.random->labelGoal()->text() + open.random->labelArea()->text(), QStringLiteral("Fun"));
        open.random->done();
        QCOMPARE(open.sent().mid(2), (QList<QByteArray>{getGoal, getGoal, setChecked + "12", getGoal,
                                                        setChecked + "0", getGoal}));
        open.service.answer("get-random-goal", goal("12", "Run", "3"));
        open.click("Next Goal");
        open.click("Close");
        open.service.answer("get-random-goal", QByteArray("<a/>"));
        Client::trigger(open.document, "actionRandomGoal");
        QTRY_VERIFY(open.hint().contains(u"incomplete"));
        QVERIFY(!open.button("Mark as Done")->isEnabled()); // nothing of the showing before
    }

    void doneStoresThePercentageForWhenTheSheetCloses_data() { addSampleRows("done.txt"); }
    void doneStoresThePercentageForWhenTheSheetCloses()
    {
        const auto [area, answer, percent] = sampleRow<3>();
        OpenGoal open(httpReply(goal("12", "Run", area)));
        auto goalOfProject = std::make_shared<TVXGoal>();
        goalOfProject->setIdOfGoal(12);
        open.document->wheelView()->mainData()->goals()->push_back(goalOfProject);
        open.service.answer("get-random-goal", goal("13", "Paint", "4"));
        open.service.answer("set-checked-area-percent", answer == "(none)" ? cutReply() : httpReply(answer));
        open.click("Mark as Done");

        QCOMPARE(Client::guidance(open.document),
                 answer == "(none)"
                     ? u"The service did not answer. “Run” may not be marked as done: open its area "
                       "to see."_s
                 : answer.isEmpty() ? u"The service refused to mark “Run” as done."_s
                                    : u"“Run” was marked as done."_s);
        QCOMPARE(open.sent(), (QList<QByteArray>{getGoal, setChecked + "12", getGoal}));
        QCOMPARE(open.random->labelGoal()->text(), QStringLiteral("Paint"));
        QCOMPARE(open.document->currentSet()->percent3().toUtf8(), percent);
        QVERIFY(goalOfProject->isChecked());
        QCOMPARE(Client::percents(open.document).value(2), u"30%"_s);
        const auto drawn = Client::drawn(open.document, /*settled=*/true);
        QTest::keyClick(open.sheet, Qt::Key_Escape);
        QVERIFY(!open.sheet->isVisible() && Client::drawn(open.document) > drawn);
        QCOMPARE(Client::percents(open.document).value(2).toUtf8(), percent + '%');
    }

    void nothingFiresWhileARequestIsInFlightOrOnceClosed()
    {
        OpenGoal open;
        open.holdUntil([&] {
            if (!open.hint().startsWith(u"Looking for a goal… Waiting for the service: "_s) ||
                !open.random->progress()->isAnimating() || open.button("Close")->isEnabled())
                return false;
            open.random->nextGoal();
            open.random->done();
            open.random->closeWindow();
            return true;
        });
        open.click("Next Goal");
        QVERIFY(open.sheet->isVisible() && open.hint().isEmpty());
        QCOMPARE(open.sheet->focusWidget(), open.button("Next Goal"));

        open.click("Close");
        Client::trigger(open.document, "actionRandomGoal");
        open.random->windowDidBecomeKey();
        open.click("Close");
        QCoreApplication::processEvents();
        QCOMPARE(open.sent(), (QList<QByteArray>{getGoal, getGoal}));
    }

    void oneSheetAtATimeAndNoneAfterTheEnd()
    {
        Client client;
        const QPointer<TarvexDocument> document = client.openSignedIn();
        Client::trigger(document, "actionRandomGoal");
        Client::trigger(document, "actionRenameAreas"); // as a native menu might, past the sheet
        Client::trigger(document, "actionNewSet");
        QVERIFY(document->wndNextGoals()->isVisible());
        QVERIFY(!document->wndRenameAreas()->isBegun());
        document->close(); // before the sheet's first request
        QTRY_VERIFY(document.isNull());
        QCoreApplication::processEvents();
        QCOMPARE(client.service.requests().size(), 3);
    }
};

QTEST_MAIN(RandomGoalFlowTest)
#include "RandomGoalFlowTest.moc"
