#include "AlertSheet.h"
#include "ApplicationMenuBar.h"
#include "Client.h"
#include "DocumentWindow.h"
#include "UserManual.h"

#include <QFileDialog>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>

class ShellFlowTest : public QObject
{
    Q_OBJECT

    const DocumentError m_unimplemented{.domain = u"NSOSStatusErrorDomain"_s, .code = -4};

private Q_SLOTS:
    void savingFailsAndSaysSo()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        DocumentError error;
        QVERIFY(!document->dataOfType(u"any"_s) && !document->dataOfType(u"any"_s, &error));
        QCOMPARE(error, m_unimplemented);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            Client::trigger(document, "actionSave");
            Client::trigger(document, "actionSave"); // as a native menu could meanwhile
            auto *alert = document->window()->findChild<AlertSheet *>(u"saveAlert"_s);
            QVERIFY(alert->isVisible() && !Client::button(alert, QString())->isVisible());
            QTRY_VERIFY(alert->isActiveWindow());
            QTest::keyClick(alert, Qt::Key_F1);
            QTest::keyClick(alert, key);
            QVERIFY(!alert->isBegun());
        }
        QCOMPARE(client.links.opened.size(), 2); // the manual, which tells what is stored where
        QCOMPARE(client.service.requests().size(), 3);
    }

    void openingAFileEndsAtSignIn()
    {
        Client client;
        TarvexDocument *first = client.openSignedIn();
        DocumentError error;
        QVERIFY(first->readFromData("<goals/>", u"any"_s) && first->readFromData("", u"any"_s, &error));
        QCOMPARE(error, m_unimplemented);

        const QTemporaryDir folder;
        QFile file(folder.filePath(u"wheel & <b>goals"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(qint64(1) << 40)); // sparse, 1 TiB
        Client::trigger(first, "actionOpen");
        auto *dialog = first->window()->findChild<QFileDialog *>();
        QVERIFY(dialog->isVisible());
        Q_EMIT dialog->fileSelected(file.fileName());
        QCOMPARE(client.controller.documents().size(), std::size_t(2));
        const TarvexDocument *opened = client.controller.documents().back().get();
        QCOMPARE(opened->window()->windowTitle(), first->window()->windowTitle());
        QTRY_VERIFY(opened->wndSignIn()->isBegun());
        QVERIFY(Client::average(opened).isEmpty());

        for (const QString &path : {folder.path(), folder.filePath(u"none"_s)})
            QVERIFY(!client.controller.openFile(path));
        QCOMPARE(client.alert.errors.size(), 2);
        QCOMPARE(client.controller.documents().size(), std::size_t(2));
    }

    void everyCommandHasItsKey()
    {
        Client client;
        const QMainWindow *window = client.open()->window();
        QStringList keys;
        for (const char *command : {"New", "Open", "Save", "Print", "PrintPreview", "Reload", "NewSet",
                                    "RenameSet", "RenameAreas", "RandomGoal", "Help"})
            keys += QKeySequence::listToString(
                window->findChild<QAction *>(u"action"_s + QLatin1String(command))->shortcuts());
        QCOMPARE(keys.join(u' '), u"Ctrl+N Ctrl+O Ctrl+S Ctrl+P Ctrl+Shift+P F5 Ctrl+Shift+N F2 Ctrl+Shift+R "
                                  "Ctrl+G F1"_s);
        QCOMPARE(QKeySequence::listToString(keysWith(Qt::Key_F1, QKeySequence::Find)), u"Ctrl+F; F1"_s);
    }

    void documentsComeAndGo()
    {
        Client client;
        Client::trigger(client.open(), "actionNew");
        QCOMPARE(client.controller.documents().size(), std::size_t(2));
        while (!client.controller.documents().empty())
            Client::trigger(client.controller.documents().back().get(), "actionClose");

        const ApplicationMenuBar menuBar(client.controller);
        menuBar.findChildren<QMenu *>().first()->actions().first()->trigger();
        QTRY_VERIFY(client.controller.documents().front()->wndSignIn()->isVisible());
    }

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
        QTimer begin;
        QTimer tooLate;
        begin.setSingleShot(true);
        connect(&begin, &QTimer::timeout, document, [=] { Client::trigger(document, "actionReload"); });
        connect(&tooLate, &QTimer::timeout, &client.controller, [] { QCoreApplication::exit(1); });
        begin.start(0);
        tooLate.start(10'000);
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

    void helpLeadsToThePagesOfTheServiceAndTellsTheVersion()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        for (const char *name : {"actionWebSite", "actionTwitter", "actionFacebook", "actionAbout"})
            Client::trigger(document, name);
        QCOMPARE(client.links.opened.removeDuplicates(), 0);
        const QUrl service(QStringLiteral(TARVEX_SERVICE_URL));
        for (const QString &page : {u"/"_s, u"/twitter"_s, u"/facebook"_s})
            QVERIFY(client.links.opened.contains(service.resolved(QUrl(page)).toString()));
        const QPointer<AlertSheet> about = document->window()->findChild<AlertSheet *>(u"aboutBox"_s);
        const auto labels = about->findChildren<QLabel *>();
        const QRegularExpression version(u"^Tarvex Cloud \\d+\\.\\d+\\.\\d+$"_s);
        QVERIFY(std::any_of(labels.begin(), labels.end(),
                            [&](const QLabel *label) { return version.match(label->text()).hasMatch(); }));
        QTRY_VERIFY(about->isActiveWindow());
        QTest::keyClick(about, Qt::Key_F1);
        QVERIFY(QUrl(client.links.opened.last()).isLocalFile()); // the manual
        QTest::keyClick(about, Qt::Key_Escape);
        QTRY_VERIFY(!about);
    }

    void theManualIsShownOrItsPlaceTold()
    {
        Client client;
        const TarvexDocument *document = client.open();
        QTest::keyClick(document->wndSignIn(), Qt::Key_F1); // where those are who need it most
        const QString page = QUrl(client.links.opened.value(0)).toLocalFile();
        QVERIFY(QFile::exists(page));
        client.links.isBrowserThere = false;
        Client::signIn(document);
        Client::trigger(document, "actionHelp");
        QVERIFY(client.alert.errors.value(0).contains(page));

        const QTemporaryDir root;
        const QDir programs(root.filePath(u"bin"_s));
        const QString installed = root.filePath(u"share/doc/tarvex-cloud/manual/index.html"_s);
        QCOMPARE(UserManual::firstPage(programs), installed);
        const QString absent = UserManual::notShown(installed);
        QVERIFY(absent.contains(installed) && absent.contains(u"not installed"_s));
        const QString built = root.filePath(u"manual/index.html"_s); // for a program two folders below
        for (const QString &file : {built, root.filePath(u"x/share/doc/tarvex-cloud/manual/index.html"_s)}) {
            QVERIFY(QDir().mkpath(QFileInfo(file).path()) && QFile(file).open(QIODevice::WriteOnly));
            QCOMPARE(UserManual::firstPage(QDir(root.filePath(u"x/y"_s))), file);
        }
    }

    void foldersAreMadeBelowTheHomeUnlessSomethingIsThere()
    {
        Client client;
        const TarvexDocument document(client.controller);
        const QTemporaryDir home;
        const auto restored = qScopeGuard([before = qgetenv("HOME")] { qputenv("HOME", before); });
        qputenv("HOME", home.path().toUtf8());
        const QString support = home.path() + u"/Library/Application Support/Tarvex Cloud/"_s;
        QCOMPARE(document.pathForApplicationSupportDirectory(), support);
        QVERIFY(QFileInfo(support).isDir());
        QFile file(home.filePath(u"Documents"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(document.pathForDocuments(), home.path() + u"/Documents"_s);
        QVERIFY(QFileInfo(file).isFile());
    }
};

QTEST_MAIN(ShellFlowTest)
#include "ShellFlowTest.moc"
