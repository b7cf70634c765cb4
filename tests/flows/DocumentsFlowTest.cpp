#include "AlertSheet.h"
#include "Client.h"

#include <QSignalSpy>

class DocumentsFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void twoDocumentsKeepTheirOwnAccounts()
    {
        Client client;
        TarvexDocument *one = client.openSignedIn();
        client.service.answer("get-sets", setsAnswer({setRow("3", "Bens", "8 8 8 8 8 8 8 8")}));
        TarvexDocument *two = client.open();
        Client::signIn(two, u"ben"_s);

        QCOMPARE(one->loginUserName(), u"ann"_s);
        QCOMPARE(two->loginUserName(), u"ben"_s);
        QCOMPARE(Client::average(one), u"45%"_s);
        QCOMPARE(Client::average(two), u"8%"_s);
        QCOMPARE(one->window()->windowTitle(), two->window()->windowTitle());

        QSignalSpy last(&client.controller, &DocumentController::lastDocumentClosed);
        one->close();
        QCOMPARE(last.count(), 0);
        QTest::keyClick(two->listOfProjects(), Qt::Key_End);
        two->window()->close();
        QCOMPARE(last.count(), 1);
    }

    void theSheetComesUpOnTheMainWindowAndTheSecondWaits()
    {
        Client client(DocumentController::timeBeforeSignIn);
        TarvexDocument *one = client.controller.openUntitledDocument();
        TarvexDocument *two = client.controller.openUntitledDocument();
        QVERIFY(one->window()->isVisible() && !one->wndSignIn()->isVisible());
        QCOMPARE(one->findChild<QTimer *>()->interval(), 500);
        QCOMPARE(Client::labels(one), QStringList(8, QString()));
        one->window()->activateWindow();
        QTRY_COMPARE(client.controller.mainWindow(), one->window());
        QTRY_VERIFY(one->wndSignIn()->isVisible());
        QTRY_VERIFY(two->wndSignIn()->isBegun());
        QVERIFY(!one->findChild<QTimer *>()); // nothing left that could fire again
        QVERIFY(!two->wndSignIn()->isVisible());
        one->close();
        QVERIFY(!one->wndSignIn()->isVisible());
        QTRY_VERIFY(two->wndSignIn()->isVisible());
        QVERIFY(two->window()->isVisible());
        QVERIFY(client.service.requests().isEmpty());
    }

    void quittingDuringARequestIsDoneBehindIt()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        client.holdUntil([&] { return client.controller.quit(), true; });
        QTimer::singleShot(0, document, [=] { Client::trigger(document, "actionReload"); });
        QTimer::singleShot(10'000, &client.controller, [] { QCoreApplication::exit(1); });
        QCOMPARE(QCoreApplication::exec(), 0);
    }

    void aDocumentWithoutAWindowTurnsToTheCurrentOne()
    {
        Client client;
        TarvexDocument *current = client.openSignedIn();
        QVERIFY(QTest::qWaitForWindowActive(current->window()));
        QCOMPARE(current->currentDocument(), current);

        TarvexDocument routed(client.controller);
        current->project()->areas()->at(2)->setName(u"Renamed"_s);
        routed.setNamesForAreasOnWindow();
        QCOMPARE(Client::labels(current).value(2), u"Renamed"_s);
        QCOMPARE(routed.project(), current->project());
        TarvexDocument deleting(client.controller);
        deleting.alertDeleteCurrentprojectEded(nullptr, AlertSheet::alternateReturn, nullptr);
        deleting.alertDeleteCurrentprojectEded(nullptr, AlertSheet::defaultReturn, nullptr);
        QCOMPARE(client.service.bodies().value(3), "p1=delete-sets" + annsDigests + "&p4=7");
    }
};

QTEST_MAIN(DocumentsFlowTest)
#include "DocumentsFlowTest.moc"
