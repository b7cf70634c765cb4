#include "AlertSheet.h"
#include "ApplicationMenuBar.h"
#include "Client.h"

#include <QFileDialog>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const DocumentError unimplemented{.domain = u"NSOSStatusErrorDomain"_s, .code = -4};
const QString title = u"Tarvex Cloud - Client for Mac OS X"_s;

QAction *action(const TarvexDocument *document, const QString &name)
{
    return document->window()->findChild<QAction *>(name);
}

} // namespace

class ShellFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savingFailsAndSaysSo()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        DocumentError error;
        QVERIFY(!document->dataOfType(u"any"_s));
        QVERIFY(!document->dataOfType(u"any"_s, &error));
        QCOMPARE(error, unimplemented);

        const qsizetype sent = client.service.requests().size();
        action(document, u"actionSave"_s)->trigger();
        auto *alert = document->window()->findChild<AlertSheet *>(u"saveAlert"_s);
        QVERIFY(alert->isVisible());
        action(document, u"actionSave"_s)->trigger(); // as a native menu could meanwhile
        const auto buttons = alert->findChildren<QPushButton *>();
        QCOMPARE(std::count_if(buttons.begin(), buttons.end(), [](auto *b) { return b->isVisible(); }), 1);
        QTest::keyClick(alert, Qt::Key_Return);
        QVERIFY(!alert->isVisible());
        action(document, u"actionSave"_s)->trigger();
        QTest::keyClick(alert, Qt::Key_Escape);
        QVERIFY(!alert->isBegun());
        QCOMPARE(client.service.requests().size(), sent);
    }

    void openingAFileEndsAtSignIn()
    {
        Client client;
        TarvexDocument *first = client.openSignedIn();
        DocumentError error;
        QVERIFY(first->readFromData("<goals/>", u"any"_s));
        QVERIFY(first->readFromData("<goals/>", u"any"_s, &error));
        QCOMPARE(error, unimplemented);
        QCOMPARE(Client::average(first), u"45%"_s);

        const QTemporaryDir folder;
        QFile file(folder.filePath(u"wheel & <b>goals"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(qint64(1) << 40)); // sparse, 1 TiB
        action(first, u"actionOpen"_s)->trigger();
        auto *dialog = first->window()->findChild<QFileDialog *>();
        QVERIFY(dialog->isVisible());
        Q_EMIT dialog->fileSelected(file.fileName());
        QCOMPARE(client.controller.documents().size(), std::size_t(2));
        const TarvexDocument *opened = client.controller.documents().back().get();
        QCOMPARE(opened->window()->windowTitle(), title);
        QCOMPARE(first->window()->windowTitle(), title);
        QVERIFY(opened->project()->sets()->empty() && Client::average(opened).isEmpty());
        QTRY_VERIFY(opened->wndSignIn()->isBegun());

        for (const QString &path : {folder.path(), folder.filePath(u"none"_s)})
            QVERIFY(!client.controller.openFile(path));
        QCOMPARE(client.alert.errors.size(), 2);
        QCOMPARE(client.controller.documents().size(), std::size_t(2));
    }

    void documentsComeAndGo()
    {
        Client client;
        client.open();
        action(client.controller.documents().front().get(), u"actionNew"_s)->trigger();
        QCOMPARE(client.controller.documents().size(), std::size_t(2));
        while (!client.controller.documents().empty())
            action(client.controller.documents().back().get(), u"actionClose"_s)->trigger();
        QVERIFY(!client.controller.mainWindow());

        const ApplicationMenuBar menuBar(client.controller);
        menuBar.findChildren<QMenu *>().first()->actions().first()->trigger();
        QCOMPARE(client.controller.documents().size(), std::size_t(1));
        QTRY_VERIFY(client.controller.documents().front()->wndSignIn()->isVisible());
    }

    void noTwoCommandsShareAKey()
    {
        Client client;
        QList<QKeySequence> seen;
        const auto actions = client.open()->window()->findChildren<QAction *>();
        for (const QAction *command : actions)
            for (const QKeySequence &keys : command->shortcuts()) {
                QVERIFY2(!seen.contains(keys), qPrintable(keys.toString() + u' ' + command->text()));
                seen += keys;
            }
        for (const auto standard :
             {QKeySequence::New, QKeySequence::Open, QKeySequence::Close, QKeySequence::Save})
            QVERIFY2(seen.contains(QKeySequence(standard)), qPrintable(QKeySequence(standard).toString()));
    }

    void linksOpenPagesOfOurOwn()
    {
        Client client;
        const TarvexDocument *document = client.open();
        for (const QString &name : {u"actionWebSite"_s, u"actionTwitter"_s, u"actionFacebook"_s})
            action(document, name)->trigger();
        QCOMPARE(client.links.opened.size(), 3);
        QCOMPARE(client.links.opened.filter(u"https://www.example.org/"_s).size(), 3);
        QCOMPARE(client.links.opened.removeDuplicates(), 0);
        QVERIFY(client.service.requests().isEmpty());
    }

    void aboutNamesTheVersion()
    {
        Client client;
        const TarvexDocument *document = client.openSignedIn();
        action(document, u"actionAbout"_s)->trigger();
        const QPointer<AlertSheet> box = document->window()->findChild<AlertSheet *>(u"aboutBox"_s);
        QVERIFY(box->isVisible());
        QStringList texts;
        for (const QLabel *label : box->findChildren<QLabel *>())
            texts += label->text();
        QCOMPARE(texts.filter(QRegularExpression(u"^Tarvex Cloud \\d+\\.\\d+\\.\\d+$"_s)).size(), 1);
        QTest::keyClick(box, Qt::Key_Escape);
        QTRY_VERIFY(!box);
    }

    void foldersAreMadeBelowTheHomeUnlessSomethingIsThere()
    {
        Client client;
        const TarvexDocument document(client.controller);
        const QTemporaryDir home;
        const QByteArray homeBefore = qgetenv("HOME");
        const auto restored = qScopeGuard([&] { qputenv("HOME", homeBefore); });
        qputenv("HOME", home.path().toUtf8());

        const QString support = home.path() + u"/Library/Application Support/Tarvex Cloud/"_s;
        for (int turn = 0; turn < 2; ++turn)
            QCOMPARE(document.pathForApplicationSupportDirectory(), support);
        QVERIFY(QFileInfo(support).isDir());
        QFile file(home.filePath(u"Documents"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(document.pathForDocuments(), home.path() + u"/Documents"_s);
        QVERIFY(QFileInfo(file).isFile());

        qputenv("HOME", "/dev/null/nobody");
        QCOMPARE(document.pathForDocuments(), u"/dev/null/nobody/Documents"_s);
    }
};

QTEST_MAIN(ShellFlowTest)
#include "ShellFlowTest.moc"
