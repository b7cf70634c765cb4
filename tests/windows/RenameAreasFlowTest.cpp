#include "RenameAreasWindowController.h"

#include "WindowHost.h"

#include <QLabel>
#include <QLineEdit>

namespace {

const QByteArray getAreas = "p1=get-areas" + annsDigests;
const QByteArray setNames = "p1=set-area-names" + annsDigests + "&p4=";
const ServiceReply noAnswer{.bytes = {}, .closes = true};

QByteArray areas(const QByteArrayList &names)
{
    QList<QByteArrayList> rows;
    for (qsizetype i = 0; i < names.size(); ++i)
        rows.append({QByteArray::number(i + 1), names[i], "", "4"});
    return xmlAnswer({"id", "name", "color", "value"}, rows);
}

/// The sheet as the document hands it over and begins it.
class Showing : public RenameAreasParent
{
public:
    explicit Showing(const QStringList &names)
    {
        host.addAreas(names);
        host.service.answer("get-areas", areas({"From", "the", "service"}));
        controller.buildContents();
        begin();
    }

    void begin()
    {
        controller.setProject(host.project);
        controller.setIsAlreadyLoadedDatas(/*loaded=*/false);
        controller.setLoginUserName(QStringLiteral("ann"));
        controller.setLoginPassword(QStringLiteral("secret"));
        controller.setParent(this);
        host.mainWindow.activateWindow(); // as a window manager does once a sheet has gone
        const bool isActive = QTest::qWaitForWindowActive(&host.mainWindow);
        host.sheet.beginOn(&host.mainWindow);
        if (!isActive || !QTest::qWaitFor([this] { return controller.isAlreadyLoadedDatas(); }))
            qFatal("the sheet did not become active");
    }

    void setNamesForAreasOnWindow() override { namesOnWindow = names(); }
    TarvexView *wheelView() const override { return &host.wheelView; }

    void type(QLineEdit *field, const char *name) const
    {
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, QString::fromLatin1(name));
    }

    void click(const char *button) const { QTest::mouseClick(host.button(button), Qt::LeftButton); }

    /// The project's areas by name.
    QString names() const
    {
        QStringList names;
        for (const TVXAreaPtr &area : *host.project->areas())
            names += area->name();
        return names.join(u',');
    }

    mutable WindowHost host;
    RenameAreasWindowController controller{host, &host.sheet};
    QString namesOnWindow;
};

} // namespace

class RenameAreasFlowTest : public QObject
{
    Q_OBJECT

private:
    const QStringList eight = QStringLiteral("a b c d e f g h").split(u' ');

private Q_SLOTS:
    void savingSendsEveryNameAsTypedAndShowsWhatTheServiceHolds()
    {
        const QString lines = QStringLiteral("two\r\nlines\u2028\t");
        Showing showing({lines, eight[1], QStringLiteral("L & F"), eight[3], QString(40'000, u'x')});
        showing.type(showing.controller.textName2(), "");
        showing.type(showing.controller.textName4(), "  R&D; ");
        QVERIFY(!showing.controller.textName6()->isEnabled());
        QTest::keyClick(showing.controller.textName4(), Qt::Key_Return);
        QCOMPARE(showing.host.service.bodies(),
                 (QList<QByteArray>{setNames + "id:1;name:" + lines.toUtf8() +
                                        ";{_end_}id:2;name:;{_end_}id:3;name:L {_amp_} F;{_end_}"
                                        "id:4;name:  R{_amp_}D{_dc_} ;{_end_}id:5;name:" +
                                        QByteArray(40'000, 'x') + ";{_end_}",
                                    getAreas}));
        QVERIFY(!showing.host.sheet.isVisible());
        QCOMPARE(showing.names(), QStringLiteral("From,the,service"));
        QCOMPARE(showing.namesOnWindow, showing.names());
    }

    void editsOutliveALossOfFocusButNotACancel()
    {
        Showing showing(eight);
        QLineEdit *last = showing.controller.textName8();
        showing.type(last, "edited");
        showing.controller.windowDidBecomeKey();
        QCOMPARE(last->text(), QStringLiteral("edited"));
        QTest::keyClick(last, Qt::Key_Escape);
        QVERIFY(!showing.host.sheet.isVisible());
        showing.begin();
        QCOMPARE(last->text(), QStringLiteral("h"));
        showing.click("Cancel");
        QVERIFY(showing.host.service.bodies().isEmpty());
        QCOMPARE(showing.names(), eight.join(u','));

        showing.host.project->areas()->clear();
        showing.begin();
        QVERIFY(!showing.host.button("Save")->isEnabled());
    }

    void failuresLeaveWhatTheReloadBrought_data()
    {
        QTest::addColumn<ServiceReply>("saved");
        QTest::addColumn<ServiceReply>("reloaded");
        QTest::addColumn<QString>("left"); // the names, the number of alerts, and whether the sheet stays
        const ServiceReply ok = httpReply("OK");
        const ServiceReply old = httpReply(areas({"a", "b"}));
        const ServiceReply part = httpReply("<x><id>1</id><id>2</id><name>a</name><color/><value/></x>");
        QTest::newRow("refused") << httpReply("Error") << old << QStringLiteral("a,b 0");
        QTest::newRow("not sent") << noAnswer << old << QStringLiteral("a,b 1");
        QTest::newRow("not reloaded") << ok << noAnswer << QStringLiteral(" 1");
        QTest::newRow("reloaded in part") << ok << part << QStringLiteral("a 0, and incomplete");
    }

    void failuresLeaveWhatTheReloadBrought()
    {
        QFETCH(ServiceReply, saved);
        QFETCH(ServiceReply, reloaded);
        Showing showing(eight);
        showing.host.service.answer("set-area-names", saved);
        showing.host.service.answer("get-areas", reloaded);
        showing.type(showing.controller.textName1(), "new");
        showing.click("Save");
        QCOMPARE(showing.namesOnWindow, showing.names());
        QString left = showing.names() + u' ' + QString::number(showing.host.recordedAlert.errors.size());
        if (showing.host.sheet.isVisible())
            left += QStringLiteral(", and incomplete");
        QTEST(left, "left");
        QCOMPARE(showing.host.control<QLabel>("labelRenameAreasHint")->text().contains(u"incomplete"),
                 showing.host.sheet.isVisible());
    }
};

QTEST_MAIN(RenameAreasFlowTest)
#include "RenameAreasFlowTest.moc"
