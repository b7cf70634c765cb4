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
        TarvexDocument *two = client.controller.openUntitledDocument();
        QTRY_VERIFY(two->wndSignIn()->isVisible());
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
        one->window()->activateWindow();
        QTRY_COMPARE(client.controller.mainWindow(), one->window());
        QTRY_VERIFY(one->wndSignIn()->isVisible());
        QTRY_VERIFY(two->wndSignIn()->isBegun());
        QVERIFY(!two->wndSignIn()->isVisible());
        one->close();
        QVERIFY(!one->wndSignIn()->isVisible());
        QTRY_VERIFY(two->wndSignIn()->isVisible());
        QVERIFY(two->window()->isVisible());
        QVERIFY(client.service.requests().isEmpty());
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

    void everythingThatTakesTheFocusHasAName()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        QStringList names;
        for (const QWidget *window : {static_cast<const QWidget *>(document->window()),
                                      static_cast<const QWidget *>(document->wndSignIn())}) {
            const auto widgets = window->findChildren<QWidget *>();
            for (const QWidget *widget : widgets) {
                if (!(widget->focusPolicy() & Qt::TabFocus) || widget->window() != window)
                    continue;
                const auto *button = qobject_cast<const QPushButton *>(widget);
                const QString name = button ? button->text() : widget->accessibleName();
                QVERIFY2(!name.isEmpty(), qPrintable(widget->objectName()));
                QVERIFY2(!names.contains(name), qPrintable(name));
                names += name;
            }
        }
        QVERIFY(names.size() >= 6);
    }
};

QTEST_MAIN(DocumentsFlowTest)
#include "DocumentsFlowTest.moc"
