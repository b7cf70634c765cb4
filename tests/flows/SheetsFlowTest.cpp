#include "Client.h"

#include <QAction>

using namespace Qt::StringLiterals;

// What the sheets do by themselves is tested beside them; here, what the document hands them and hears of
// them.
class SheetsFlowTest : public QObject
{
    Q_OBJECT

private:
    static void trigger(const TarvexDocument *document, const char *name)
    {
        document->window()->findChild<QAction *>(QString::fromLatin1(name))->trigger();
    }

private Q_SLOTS:
    void aRandomGoalMarkedDoneReachesThePercentsWhenTheSheetCloses()
    {
        Client client;
        client.service.answer("get-random-goal",
                              QByteArray("<g><id>44</id><name>Run</name><area>3</area></g>"));
        client.service.answer("set-checked-area-percent", QByteArray("90"));
        const TarvexDocument *document = client.openSignedIn();
        trigger(document, "actionRandomGoal");
        QTRY_COMPARE(client.service.bodies().size(), 4);
        QTest::mouseClick(Client::button(document->wndNextGoals(), u"Mark as Done"_s), Qt::LeftButton);
        QCOMPARE(client.service.bodies().mid(3),
                 (QList<QByteArray>{"p1=get-random-goal" + annsDigests + "&p4=7",
                                    "p1=set-checked-area-percent" + annsDigests + "&p5=44",
                                    "p1=get-random-goal" + annsDigests + "&p4=7"}));
        QCOMPARE(Client::percents(document).value(2), u"30%"_s);
        QTest::keyClick(document->wndNextGoals(), Qt::Key_Escape);
        QCOMPARE(Client::percents(document).value(2), u"90%"_s);
        QCOMPARE(Client::average(document), u"52%"_s);
        QVERIFY(!document->wndNextGoals()->isVisible());
    }

    void oneSheetAtATimeAndNoneAfterTheEnd()
    {
        Client client;
        const QPointer<TarvexDocument> document = client.openSignedIn();
        trigger(document, "actionRandomGoal");
        trigger(document, "actionRenameAreas"); // as a native menu might, past the sheet
        trigger(document, "actionNewSet");
        QVERIFY(document->wndNextGoals()->isVisible());
        QVERIFY(!document->wndRenameAreas()->isBegun());
        document->close(); // before the sheet's first request
        QTRY_VERIFY(document.isNull());
        QCoreApplication::processEvents();
        QCOMPARE(client.service.requests().size(), 3);
    }
};

QTEST_MAIN(SheetsFlowTest)
#include "SheetsFlowTest.moc"
