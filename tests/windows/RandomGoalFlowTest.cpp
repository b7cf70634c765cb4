#include "RandomGoalWindowController.h"

#include "BusyIndicator.h"
#include "WindowHost.h"
#include "WrappedLabel.h"

#include <QLabel>

namespace {

const QByteArray getGoal = "p1=get-random-goal" + annsDigests + "&p4=7";
const QByteArray setChecked = "p1=set-checked-area-percent" + annsDigests + "&p5=";
const ServiceReply noAnswer{.bytes = {}, .closes = true};

QByteArray goal(const QByteArray &id, const QByteArray &name, const QByteArray &area)
{
    return xmlAnswer({"id", "name", "area"}, {{id, name, area}});
}

/// The sheet as the document hands it over and begins it.
class Showing : public WindowHost
{
public:
    explicit Showing(const ServiceReply &first = httpReply(goal("12", "Run", "3")))
    {
        addAreas(QStringLiteral("Health,R & D,Fun,Home,5,6,7,8,9").split(u','));
        service.answer("get-random-goal", first);
        random.buildContents();
        begin();
        if (!QTest::qWaitFor([this] { return !service.requests().isEmpty() && !isBusy(); }))
            qFatal("nothing was fetched");
    }

    void begin()
    {
        random.setIsAlreadyLoaded(/*loaded=*/false);
        random.setLoginPassword(QStringLiteral("secret"));
        random.setLoginUserName(QStringLiteral("ann"));
        random.setCurrentProject(project);
        random.setCurrentSet(set);
        random.setWheelView(&wheelView);
        random.labelArea()->setText(QStringLiteral("Please wait..."));
        random.labelGoal()->setText(QStringLiteral("Please wait..."));
        sheet.beginOn(&mainWindow);
    }

    void click(const char *text) const { QTest::mouseClick(button(text), Qt::LeftButton); }
    QString hint() const { return control<QLabel>("labelRandomGoalHint")->text(); }

    TVXSetsPtr set = addSet(/*id=*/7, QStringLiteral("Autumn"));
    RandomGoalWindowController random{*this, &sheet};
};

} // namespace

class RandomGoalFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aGoalIsShownOrItsAbsenceExplained_data()
    {
        QTest::addColumn<ServiceReply>("reply");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<bool>("mayBeDone");
        const auto row = [](const char *name, const ServiceReply &reply, const char *shown, bool mayBeDone) {
            QTest::newRow(name) << reply << QString::fromLatin1(shown) << mayBeDone;
        };
        const char *none = "Please wait...||No goal to show: all may be done, or the service did not answer.";
        row("a goal", httpReply(goal("12", "5{_d_}5 km", "1")), "Health|5.5 km|", true);
        row("ampersands", httpReply(goal("12", "A{_amp_}B {_amp_}{_amp_} &lt;b>", "2")), "R  D|AB & <b>|",
            true);
        row("unknown area", httpReply(goal("12", "Run", "99")), "Please wait...|Run|", true);
        row("no text", httpReply(goal("12", "", "3")), "Fun||This goal has no text.", true);
        row("none left", httpReply("Error"), none, false);
        row("no answer", noAnswer, none, false);
        row("not XML", httpReply("oops"), none, false);
        row("an element missing", httpReply("<a><id>1</id><name>x</name></a>"),
            "Please wait...|Please wait...|The service's answer was incomplete. Choose Next Goal to try "
            "again.",
            false);
    }

    void aGoalIsShownOrItsAbsenceExplained()
    {
        QFETCH(ServiceReply, reply);
        QFETCH(bool, mayBeDone);
        Showing showing(reply);
        QCOMPARE(showing.service.bodies(), QList<QByteArray>{getGoal});
        const WrappedLabel *labelGoal = showing.random.labelGoal();
        QTEST(QStringList({showing.random.labelArea()->text(), labelGoal->text(), showing.hint()}).join(u'|'),
              "shown");
        QCOMPARE(labelGoal->isVisible(), mayBeDone);
        QCOMPARE(showing.button("Mark as Done")->isEnabled(), mayBeDone);
        QVERIFY(!showing.random.progress()->isAnimating());
    }

    void onlyTheUserFetchesAgainAndAnIncompleteAnswerChangesNothing()
    {
        Showing showing;
        const QSize size = showing.sheet.size();
        showing.random.windowDidBecomeKey();
        showing.service.answer("get-random-goal", goal("12", QByteArray(10'000, 'x'), "3"));
        showing.button("Mark as Done")->setFocus();
        QTest::keyClick(showing.button("Mark as Done"), Qt::Key_Return); // which only asks for another
        QCoreApplication::processEvents();
        QCOMPARE(showing.sheet.size(), size);
        showing.service.answer("get-random-goal", QByteArray("<a/>"));
        showing.click("Next Goal");
        QCOMPARE(showing.random.labelGoal()->text().size(), 10'000);
        QVERIFY(showing.hint().contains(u"incomplete"));

        showing.service.answer("get-random-goal", QByteArray("Error"));
        showing.click("Mark as Done");
        QCOMPARE(showing.random.labelGoal()->text() + showing.random.labelArea()->text(),
                 QStringLiteral("Fun"));
        showing.random.done();
        QCOMPARE(showing.service.bodies(), (QList<QByteArray>{getGoal, getGoal, getGoal, setChecked + "12",
                                                              getGoal, setChecked + "0", getGoal}));
    }

    void doneStoresThePercentageForWhenTheSheetCloses_data()
    {
        QTest::addColumn<QByteArray>("area");
        QTest::addColumn<ServiceReply>("percent");
        QTest::addColumn<QString>("percents");
        QTest::newRow("third area") << QByteArray("3") << httpReply(" 040% ") << QStringLiteral("040%");
        QTest::newRow("no answer") << QByteArray("3") << noAnswer << QString();
        QTest::newRow("unknown area") << QByteArray("99") << httpReply("40") << QString();
        QTest::newRow("ninth area") << QByteArray("9") << httpReply("40") << QString();
    }

    void doneStoresThePercentageForWhenTheSheetCloses()
    {
        QFETCH(QByteArray, area);
        QFETCH(ServiceReply, percent);
        Showing showing(httpReply(goal("12", "Run", area)));
        auto goalOfProject = std::make_shared<TVXGoal>();
        goalOfProject->setIdOfGoal(12);
        showing.project->goals()->push_back(goalOfProject);
        showing.service.answer("get-random-goal", goal("13", "Paint", "4"));
        showing.service.answer("set-checked-area-percent", percent);
        showing.click("Mark as Done");

        QCOMPARE(showing.service.bodies(), (QList<QByteArray>{getGoal, setChecked + "12", getGoal}));
        QCOMPARE(showing.random.labelGoal()->text(), QStringLiteral("Paint"));
        QTEST(showing.set->percent3(), "percents");
        QVERIFY(goalOfProject->isChecked());
        QCOMPARE(showing.percentUpdates, 0);
        QTest::keyClick(&showing.sheet, Qt::Key_Escape);
        QVERIFY(!showing.sheet.isVisible());
        QCOMPARE(showing.percentUpdates, 1);
    }

    void nothingFiresWhileARequestIsInFlightOrOnceClosed()
    {
        Showing showing;
        showing.service.hold();
        QTimer whenReceived;
        connect(&whenReceived, &QTimer::timeout, this, [&] {
            if (showing.service.requests().size() < 2)
                return;
            whenReceived.stop();
            QVERIFY(showing.random.progress()->isAnimating() && !showing.button("Close")->isEnabled());
            showing.random.nextGoal();
            showing.random.done();
            showing.random.closeWindow();
            showing.service.release();
        });
        whenReceived.start();
        showing.click("Next Goal");
        QVERIFY(showing.sheet.isVisible());
        QCOMPARE(showing.sheet.focusWidget(), showing.button("Next Goal"));

        showing.click("Close");
        showing.begin();
        showing.random.windowDidBecomeKey();
        showing.click("Close");
        QCoreApplication::processEvents();
        QCOMPARE(showing.service.bodies(), (QList<QByteArray>{getGoal, getGoal}));
    }
};

QTEST_MAIN(RandomGoalFlowTest)
#include "RandomGoalFlowTest.moc"
