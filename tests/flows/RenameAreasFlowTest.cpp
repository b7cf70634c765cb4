#include "Client.h"

#include "RenameAreasWindowController.h"

namespace {

const QByteArray getAreas = "p1=get-areas" + annsDigests;
const QByteArray setNames = "p1=set-area-names" + annsDigests + "&p4=";

// A signed-in client with the sheet for its areas' names open.
struct OpenNames : SheetClient
{
    explicit OpenNames(const QList<QByteArray> &areas = eightNames)
    {
        service.answer("get-areas", areasAnswer(areas));
        document = openSignedIn();
        service.answer("get-areas", areasAnswer({"From", "the", "service"}));
        sheet = document->wndRenameAreas();
        names = sheet->findChild<RenameAreasWindowController *>();
        begin();
    }

    void begin() const
    {
        document->window()->activateWindow(); // as a window manager does once a sheet has gone
        const bool isActive = QTest::qWaitForWindowActive(document->window());
        document->renameAreas();
        if (!isActive || !QTest::qWaitFor([this] { return names->isAlreadyLoadedDatas(); }))
            qFatal("the sheet did not become active");
    }

    static void type(QLineEdit *field, const char *name)
    {
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, QString::fromLatin1(name));
    }

    QString hint() const { return sheet->findChild<QLabel *>(u"labelRenameAreasHint"_s)->text(); }

    /// The project's areas by name.
    QString areas() const
    {
        QStringList texts;
        for (const TVXAreaPtr &area : *document->project()->areas())
            texts += area->name();
        return texts.join(u',');
    }

    RenameAreasWindowController *names;
};

} // namespace

class RenameAreasFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savingSendsEveryNameAsTypedAndShowsWhatTheServiceHolds()
    {
        OpenNames open({"two&#13;&#10;lines&#8232;&#9;", "b", "L {_amp_} F", "d", QByteArray(40'000, 'x')});
        open.type(open.names->textName2(), "");
        open.type(open.names->textName4(), "  R&D; ");
        QAccessible::queryAccessibleInterface(open.names->textName3())
            ->setText(QAccessible::Value, u"dic\ntated"_s);
        QVERIFY(!open.names->textName6()->isEnabled());
        open.holdUntil([&] {
            return open.hint().startsWith(u"Saving the names… Waiting for the service: "_s) &&
                   open.sheet->findChild<BusyIndicator *>()->isAnimating();
        });
        const auto drawn = Client::drawn(open.document, /*settled=*/true);
        QTest::keyClick(open.names->textName4(), Qt::Key_Return);
        QVERIFY(open.alert.errors.isEmpty() && Client::drawn(open.document) > drawn);
        QCOMPARE(open.sent(), (QList<QByteArray>{setNames +
                                                     "id:1;name:two\r\nlines\u2028\t"
                                                     ";{_end_}id:2;name:;{_end_}id:3;name:dic tated;{_end_}"
                                                     "id:4;name:  R{_amp_}D{_dc_} ;{_end_}id:5;name:" +
                                                     QByteArray(40'000, 'x') + ";{_end_}",
                                                 getAreas}));
        QVERIFY(!open.sheet->isVisible());
        QCOMPARE(open.areas(), QStringLiteral("From,the,service"));
        QCOMPARE(Client::labels(open.document).first(3).join(u','), open.areas());
    }

    void editsOutliveALossOfFocusButNotACancel()
    {
        OpenNames open;
        QLineEdit *last = open.names->textName8();
        open.type(last, "edited");
        open.names->windowDidBecomeKey();
        QCOMPARE(last->text(), QStringLiteral("edited"));
        QTest::keyClick(last, Qt::Key_Escape);
        QVERIFY(!open.sheet->isVisible());
        open.begin();
        QCOMPARE(last->text(), u"Love"_s);
        open.click("Cancel");
        QVERIFY(open.sent().isEmpty());
        QCOMPARE(open.areas(), QString::fromLatin1(eightNames.join(',')));

        open.document->project()->areas()->clear();
        open.begin();
        QVERIFY(!open.button("Save")->isEnabled());
    }

    void failuresLeaveWhatTheReloadBrought_data() { addSampleRows("renamings.txt"); }
    void failuresLeaveWhatTheReloadBrought()
    {
        const auto [saved, reloaded, expected] = sampleRow<3>();
        OpenNames open;
        open.service.answer("set-area-names", saved == "(none)" ? cutReply() : httpReply(saved));
        open.service.answer("get-areas", reloaded == "(none)" ? cutReply() : httpReply(reloaded));
        open.type(open.names->textName1(), "new");
        open.click("Save");
        QString left = open.areas() + u' ' + QString::number(open.alert.errors.size());
        if (open.sheet->isVisible())
            left += QStringLiteral(", and incomplete");
        left += u": "_s + Client::guidance(open.document).section(u'.', 0, 0);
        QCOMPARE(left.toUtf8(), expected);
        QCOMPARE(open.hint().contains(u"incomplete"), open.sheet->isVisible());
    }
};

QTEST_MAIN(RenameAreasFlowTest)
#include "RenameAreasFlowTest.moc"
