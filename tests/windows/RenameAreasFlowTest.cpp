#include "RenameAreasWindowController.h"

#include "BusyIndicator.h"
#include "WindowHost.h"

#include <QLabel>
#include <QLineEdit>

namespace {

const QByteArray getAreas = "p1=get-areas" + annsDigests;

QByteArray setNames(const QByteArray &records)
{
    return "p1=set-area-names" + annsDigests + "&p4=" + records;
}

QByteArray areasAnswer(const QByteArrayList &names)
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
        host.service.answer("set-area-names", QByteArray("OK"));
        host.service.answer("get-areas", areasAnswer({"From", "the", "service"}));
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

    QLineEdit *field(int number) const
    {
        return host.control<QLineEdit>(qPrintable(QStringLiteral("textName%1").arg(number)));
    }

    void type(int number, const QString &name) const
    {
        field(number)->selectAll();
        QTest::keyClick(field(number), Qt::Key_Delete);
        QTest::keyClicks(field(number), name);
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
    static QStringList eight() { return QStringLiteral("a b c d e f g h").split(u' '); }
    static QByteArray record(int id, const QByteArray &name)
    {
        return "id:" + QByteArray::number(id) + ";name:" + name + ";{_end_}";
    }

private Q_SLOTS:
    void savingSendsEveryNameAsTypedAndShowsWhatTheServiceHolds()
    {
        Showing showing(QStringList{QStringLiteral("two\r\nlines\u2028\t"), QStringLiteral("gone"),
                                    QStringLiteral("Love & Family"), QStringLiteral("  "),
                                    QString(40'000, u'x')} +
                        eight().mid(5) + QStringList{QStringLiteral("ninth")});
        showing.type(2, QString());
        showing.type(4, QStringLiteral("  R&D; "));
        showing.click("Save");

        QCOMPARE(
            showing.host.service.bodies(),
            (QList<QByteArray>{setNames(record(1, "two\r\nlines\u2028\t") + record(2, "") +
                                        record(3, "Love {_amp_} Family") + record(4, "  R{_amp_}D{_dc_} ") +
                                        record(5, QByteArray(40'000, 'x')) + record(6, "f") + record(7, "g") +
                                        record(8, "h") + record(9, "ninth")),
                               getAreas}));
        QVERIFY(!showing.host.sheet.isVisible());
        QVERIFY(!showing.controller.uploadIndicator()->isAnimating());
        QCOMPARE(showing.names(), QStringLiteral("From,the,service"));
        QCOMPARE(showing.namesOnWindow, showing.names());
    }

    void editsOutliveALossOfFocusButNotACancel()
    {
        Showing showing(eight());
        showing.type(8, QStringLiteral("edited"));
        showing.controller.windowDidBecomeKey();
        QCOMPARE(showing.field(8)->text(), QStringLiteral("edited"));
        QTest::keyClick(showing.field(8), Qt::Key_Escape);
        QVERIFY(!showing.host.sheet.isVisible());
        showing.begin();
        QCOMPARE(showing.field(8)->text(), QStringLiteral("h"));
        showing.click("Cancel");
        QVERIFY(showing.host.service.bodies().isEmpty());
        QCOMPARE(showing.names(), eight().join(u','));
        QVERIFY(showing.namesOnWindow.isNull());
    }

    void surplusFieldsAreEmptyAndWithoutAreasNothingCanBeSaved()
    {
        Showing showing(eight());
        showing.click("Save"); // three areas are left
        showing.begin();
        QVERIFY(showing.field(3)->isEnabled());
        QVERIFY(!showing.field(4)->isEnabled());
        QCOMPARE(showing.field(4)->text(), QString());
        showing.click("Save");
        QCOMPARE(showing.host.service.bodies()[2],
                 setNames(record(1, "From") + record(2, "the") + record(3, "service")));

        showing.host.project->areas()->clear();
        showing.begin();
        QVERIFY(!showing.host.button("Save")->isEnabled());
    }

    void failuresLeaveWhatTheReloadBrought_data()
    {
        QTest::addColumn<ServiceReply>("saved");
        QTest::addColumn<ServiceReply>("areas");
        QTest::addColumn<QString>("names");
        QTest::addColumn<int>("alerts");
        QTest::addColumn<bool>("closes");
        const ServiceReply none{.bytes = {}, .closes = true};
        const ServiceReply old = httpReply(areasAnswer({"a", "b"}));
        const QByteArray incomplete = "<x><id>1</id><id>2</id><name>a</name><color/><value/></x>";
        QTest::newRow("refused") << httpReply("Error") << old << QStringLiteral("a,b") << 0 << true;
        QTest::newRow("not sent") << none << old << QStringLiteral("a,b") << 1 << true;
        QTest::newRow("not reloaded") << httpReply("OK") << none << QStringLiteral("") << 1 << true;
        QTest::newRow("reloaded in part")
            << httpReply("OK") << httpReply(incomplete) << QStringLiteral("a") << 0 << false;
    }

    void failuresLeaveWhatTheReloadBrought()
    {
        QFETCH(ServiceReply, saved);
        QFETCH(ServiceReply, areas);
        QFETCH(bool, closes);
        Showing showing(eight());
        showing.host.service.answer("set-area-names", saved);
        showing.host.service.answer("get-areas", areas);
        showing.type(1, QStringLiteral("new"));
        showing.click("Save");
        QTEST(showing.names(), "names");
        QCOMPARE(showing.namesOnWindow, showing.names());
        QTEST(static_cast<int>(showing.host.recordedAlert.errors.size()), "alerts");
        QCOMPARE(showing.host.sheet.isVisible(), !closes);
        QVERIFY(!showing.controller.uploadIndicator()->isAnimating());
        if (closes)
            return;
        QVERIFY(showing.host.control<QLabel>("labelRenameAreasHint")->text().contains(u"incomplete"));
        showing.click("Save");
        QCOMPARE(showing.host.service.bodies()[2], setNames(record(1, "new")));
    }
};

QTEST_MAIN(RenameAreasFlowTest)
#include "RenameAreasFlowTest.moc"
