#include "RandomGoalWindowController.h"

#include "BusyIndicator.h"
#include "WindowHost.h"
#include "WrappedLabel.h"

#include <QLabel>

namespace {

const QByteArray getGoal = "p1=get-random-goal" + annsDigests + "&p4=7";

QByteArray goalAnswer(const QByteArray &id, const QByteArray &name, const QByteArray &area)
{
    return xmlAnswer({"id", "name", "area"}, {{id, name, area}});
}

QByteArray setChecked(const QByteArray &id)
{
    return "p1=set-checked-area-percent" + annsDigests + "&p5=" + id;
}

/// The sheet as the document hands it over and begins it.
class Showing
{
public:
    explicit Showing(const ServiceReply &goal = httpReply(goalAnswer("12", "Run 5 km", "3")))
    {
        host.addAreas({QStringLiteral("Health"), QStringLiteral("Work & Money"), QStringLiteral("Fun"),
                       QStringLiteral("Home")});
        host.service.answer("get-random-goal", goal);
        controller.buildContents();
        begin();
    }

    void begin()
    {
        controller.setIsAlreadyLoaded(/*loaded=*/false);
        controller.setLoginPassword(QStringLiteral("secret"));
        controller.setLoginUserName(QStringLiteral("ann"));
        controller.setCurrentProject(host.project);
        controller.setCurrentSet(set);
        controller.setWheelView(&host.wheelView);
        controller.labelArea()->setText(QStringLiteral("Please wait..."));
        controller.labelGoal()->setText(QStringLiteral("Please wait..."));
        host.sheet.beginOn(&host.mainWindow);
    }

    /// Waits for the goal that the sheet fetches by itself.
    void load()
    {
        const auto loaded = [this] { return !host.service.requests().isEmpty() && !host.isBusy(); };
        if (!QTest::qWaitFor(loaded))
            qFatal("nothing was fetched");
    }

    void click(const char *button) const { QTest::mouseClick(host.button(button), Qt::LeftButton); }
    QString hint() const { return host.control<QLabel>("labelRandomGoalHint")->text(); }

    QString percents() const
    {
        QStringList texts;
        for (int index = 0; index < TVXSets::areaCount; ++index)
            texts += set->percentOfArea(index);
        return texts.join(u',');
    }

    WindowHost host;
    TVXSetsPtr set = host.addSet(/*id=*/7, QStringLiteral("Autumn"));
    RandomGoalWindowController controller{host, &host.sheet};
};

} // namespace

class RandomGoalFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstGoalIsShownAsItIsOrItsAbsenceExplained_data()
    {
        QTest::addColumn<ServiceReply>("reply");
        QTest::addColumn<QString>("area");
        QTest::addColumn<QString>("goal");
        QTest::addColumn<QString>("hint");
        const QString waiting = QStringLiteral("Please wait...");
        const QString none =
            QStringLiteral("No goal to show: all may be done, or the service did not answer.");
        const QString incomplete =
            QStringLiteral("The service's answer was incomplete. Choose Next Goal to try again.");
        QTest::newRow("a goal") << httpReply(goalAnswer("12", "Run 5{_d_}5 km", "1"))
                                << QStringLiteral("Health") << QStringLiteral("Run 5.5 km") << QString();
        QTest::newRow("ampersands") << httpReply(goalAnswer("12", "R{_amp_}D {_amp_}{_amp_} &lt;b&gt;", "2"))
                                    << QStringLiteral("Work  Money") << QStringLiteral("RD & <b>")
                                    << QString();
        QTest::newRow("an area unknown here")
            << httpReply(goalAnswer("12", "Run", "99")) << waiting << QStringLiteral("Run") << QString();
        QTest::newRow("no text") << httpReply(goalAnswer("12", "", "3")) << QStringLiteral("Fun") << QString()
                                 << QStringLiteral("This goal has no text.");
        QTest::newRow("none left") << httpReply("Error") << waiting << QString() << none;
        QTest::newRow("no answer") << ServiceReply{.bytes = {}, .closes = true} << waiting << QString()
                                   << none;
        QTest::newRow("not XML") << httpReply("oops") << waiting << QString() << none;
        QTest::newRow("an element missing")
            << httpReply("<a><id>1</id><name>x</name></a>") << waiting << waiting << incomplete;
    }

    void theFirstGoalIsShownAsItIsOrItsAbsenceExplained()
    {
        QFETCH(ServiceReply, reply);
        QFETCH(QString, hint);
        Showing showing(reply);
        showing.load();
        QCOMPARE(showing.host.service.bodies(), QList<QByteArray>{getGoal});
        QTEST(showing.controller.labelArea()->text(), "area");
        QTEST(showing.controller.labelGoal()->text(), "goal");
        QCOMPARE(showing.hint(), hint);
        const bool isGoal = hint.isEmpty() || hint.startsWith(QStringLiteral("This goal"));
        QCOMPARE(showing.controller.labelGoal()->isVisible(), isGoal);
        QCOMPARE(showing.host.button("Mark as Done")->isEnabled(), isGoal);
        QVERIFY(showing.host.recordedAlert.errors.isEmpty());
        QVERIFY(!showing.controller.progress()->isAnimating());
    }

    void onlyNextGoalFetchesAgain()
    {
        Showing showing;
        showing.load();
        showing.controller.windowDidBecomeKey();
        showing.host.service.answer("get-random-goal", goalAnswer("13", "Paint", "4"));
        showing.click("Next Goal");
        QCOMPARE(showing.host.service.bodies(), (QList<QByteArray>{getGoal, getGoal}));
        QCOMPARE(showing.controller.labelGoal()->text(), QStringLiteral("Paint"));
        QCOMPARE(showing.controller.currentGoal()->idOfGoal(), 13);
    }

    void doneStoresThePercentageForWhenTheSheetCloses_data()
    {
        QTest::addColumn<QByteArray>("area");
        QTest::addColumn<ServiceReply>("percent");
        QTest::addColumn<QString>("percents");
        QTest::newRow("third area") << QByteArray("3") << httpReply(" 40 ") << QStringLiteral(",,40,,,,,");
        QTest::newRow("first area") << QByteArray("1") << httpReply("0100%")
                                    << QStringLiteral("0100%,,,,,,,");
        QTest::newRow("empty") << QByteArray("3") << httpReply("") << QStringLiteral(",,,,,,,");
        QTest::newRow("no answer") << QByteArray("3") << ServiceReply{.bytes = {}, .closes = true}
                                   << QStringLiteral(",,,,,,,");
        QTest::newRow("unknown area") << QByteArray("99") << httpReply("40") << QStringLiteral(",,,,,,,");
        QTest::newRow("ninth area") << QByteArray("9") << httpReply("40") << QStringLiteral(",,,,,,,");
    }

    void doneStoresThePercentageForWhenTheSheetCloses()
    {
        QFETCH(QByteArray, area);
        QFETCH(ServiceReply, percent);
        Showing showing(httpReply(goalAnswer("12", "Run", area)));
        showing.host.addAreas(QStringList(5, QStringLiteral("more")));
        for (const qint64 id : {11, 12}) {
            showing.host.project->goals()->push_back(std::make_shared<TVXGoal>());
            showing.host.project->goals()->back()->setIdOfGoal(id);
        }
        showing.load();
        showing.host.service.answer("get-random-goal", goalAnswer("13", "Paint", "4"));
        showing.host.service.answer("set-checked-area-percent", percent);
        showing.click("Mark as Done");

        QCOMPARE(showing.host.service.bodies(), (QList<QByteArray>{getGoal, setChecked("12"), getGoal}));
        QCOMPARE(showing.controller.labelGoal()->text(), QStringLiteral("Paint"));
        QTEST(showing.percents(), "percents");
        QVERIFY(!showing.host.project->goals()->front()->isChecked());
        QVERIFY(showing.host.project->goals()->back()->isChecked());
        QCOMPARE(showing.host.percentUpdates, 0);

        QTest::keyClick(&showing.host.sheet, Qt::Key_Escape);
        QVERIFY(!showing.host.sheet.isVisible());
        QCOMPARE(showing.host.percentUpdates, 1);
        QCOMPARE(showing.host.service.requests().size(), 3);
    }

    void whatWasOnShowStaysWhenTheNextAnswerIsIncompleteOrNone()
    {
        Showing showing;
        showing.load();
        showing.host.service.answer("get-random-goal", QByteArray("<a/>"));
        showing.click("Next Goal");
        QCOMPARE(showing.controller.labelGoal()->text(), QStringLiteral("Run 5 km"));
        QVERIFY(showing.host.button("Mark as Done")->isEnabled());
        QVERIFY(showing.hint().contains(QStringLiteral("incomplete")));

        showing.host.service.answer("get-random-goal", QByteArray("Error"));
        showing.click("Mark as Done");
        QVERIFY(!showing.controller.currentGoal());
        QCOMPARE(showing.controller.labelGoal()->text(), QString());
        QCOMPARE(showing.controller.labelArea()->text(), QStringLiteral("Fun"));
        showing.controller.done();
        QCOMPARE(showing.host.service.bodies().mid(2),
                 (QList<QByteArray>{setChecked("12"), getGoal, setChecked("0"), getGoal}));
    }

    void nothingFiresWhileARequestIsInFlight()
    {
        Showing showing;
        showing.load();
        showing.host.service.hold();
        QTimer whenReceived;
        connect(&whenReceived, &QTimer::timeout, this, [&] {
            if (showing.host.service.requests().size() < 2)
                return;
            whenReceived.stop();
            QVERIFY(showing.controller.progress()->isAnimating());
            for (const char *button : {"Next Goal", "Mark as Done", "Close"})
                QVERIFY(!showing.host.button(button)->isEnabled());
            showing.controller.nextGoal();
            showing.controller.done();
            showing.controller.closeWindow();
            showing.host.service.release();
        });
        whenReceived.start();
        showing.click("Next Goal");
        QCOMPARE(showing.host.service.bodies(), (QList<QByteArray>{getGoal, getGoal}));
        QVERIFY(showing.host.sheet.isVisible());
        QVERIFY(!showing.controller.progress()->isAnimating());
        QCOMPARE(showing.host.sheet.focusWidget(), showing.host.button("Next Goal"));
    }

    void returnAsksForAnotherGoalAndMarksNone()
    {
        Showing showing;
        showing.load();
        QTest::keyClick(&showing.host.sheet, Qt::Key_Return);
        QCOMPARE(showing.host.service.bodies(), (QList<QByteArray>{getGoal, getGoal}));
    }
};

QTEST_MAIN(RandomGoalFlowTest)
#include "RandomGoalFlowTest.moc"
