#include "WindowState.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const WindowState good{.isLoaded = true, .hasAreas = true, .hasSets = true, .isSetSelected = true};

WindowState with(auto change)
{
    WindowState state = good;
    change(state);
    return state;
}

} // namespace

Q_DECLARE_METATYPE(WindowState)

class WindowStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStateIsSaidInOneLine_data()
    {
        QTest::addColumn<WindowState>("state");
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("placeholder");
        QTest::addColumn<bool>("isReloadOffered");
        QTest::newRow("before signing in")
            << WindowState() << u"Sign in to see your wheel."_s << QString() << false;
        QTest::newRow("all there") << good << u"Click an area to set its value and edit its goals."_s
                                   << u"Choose a set"_s << false;
        QTest::newRow("nothing selected")
            << with([](WindowState &s) { s.isSetSelected = false; })
            << u"Choose a set to see its percentages and goals."_s << u"Choose a set"_s << false;
        QTest::newRow("no sets") << with([](WindowState &s) { s.hasSets = s.isSetSelected = false; })
                                 << u"There are no sets yet. Choose New Set to begin with one."_s
                                 << u"No sets"_s << false;
        QTest::newRow("sets not loaded")
            << with([](WindowState &s) { s.hasSets = s.isSetSelected = false, s.haveSetsFailed = true; })
            << u"The sets could not be loaded. Choose Reload to fetch them again."_s << u"Sets not loaded"_s
            << true;
        QTest::newRow("no areas") << with([](WindowState &s) { s.hasAreas = false; })
                                  << u"The service sent no wheel. Choose Reload to try again."_s
                                  << u"Choose a set"_s << true;
        QTest::newRow("areas not loaded")
            << with([](WindowState &s) { s.hasAreas = false, s.haveAreasFailed = true; })
            << u"The areas could not be loaded. Choose Reload to fetch them again."_s << u"Choose a set"_s
            << true;
        QTest::newRow("nothing loaded")
            << WindowState{.isLoaded = true, .haveAreasFailed = true, .haveSetsFailed = true}
            << u"The wheel could not be loaded. Choose Reload to try again."_s << u"Sets not loaded"_s
            << true;
        QTest::newRow("done and in doubt")
            << with([](WindowState &s) { s.lastDone = u"Done?"_s, s.isInDoubt = true; }) << u"Done?"_s
            << u"Choose a set"_s << true;
        QTest::newRow("done, and something is missing")
            << with([](WindowState &s) { s.lastDone = u"Done."_s, s.isSetSelected = false; })
            << u"Done. Choose a set to see its percentages and goals."_s << u"Choose a set"_s << false;
    }

    void aStateIsSaidInOneLine()
    {
        QFETCH(WindowState, state);
        QTEST(WindowWords::statement(state), "statement");
        QTEST(WindowWords::placeholder(state), "placeholder");
        QTEST(WindowWords::isReloadOffered(state), "isReloadOffered");
    }

    void commandsNeedWhatTheyWorkOn()
    {
        QCOMPARE(WindowWords::enabledCommands({}), EnabledCommands());
        QCOMPARE(WindowWords::enabledCommands({.isLoaded = true}),
                 (EnabledCommands{.signIn = true, .reload = true, .newSet = true}));
        QCOMPARE(WindowWords::enabledCommands(good),
                 (EnabledCommands{true, true, true, /*changeSet=*/true, /*renameAreas=*/true,
                                  /*selectSet=*/true}));
    }

    void outcomesNameWhatTheyAreAbout()
    {
        using Kind = ActionOutcome::Kind;
        using Result = TVXWritten;
        const QString lines = u"two\nlines %1 "_s.repeated(9);
        for (const auto &[outcome, sentence] :
             {std::pair(ActionOutcome{Kind::AreaSaved, u"Health"_s}, u"Health was saved."_s),
              std::pair(ActionOutcome{Kind::AreaSaved, u"Health"_s, Result::Unknown},
                        u"The service did not answer. Health may not be stored: open it to see."_s),
              std::pair(ActionOutcome{Kind::AreaSaved, QString(), Result::Refused},
                        u"The area was not stored as it is shown: the service refused. Open it to see."_s),
              std::pair(ActionOutcome{Kind::GoalMarkedDone, u" \t"_s}, u"“(no name)” was marked as done."_s),
              std::pair(ActionOutcome{Kind::AreasRenamed, {}, Result::Refused},
                        u"The service kept names of areas that differ from those you typed."_s),
              std::pair(ActionOutcome{Kind::SetDeleted, lines},
                        u"“two lines %1 two lines %1 two lines %1…” was deleted."_s)})
            QCOMPARE(WindowWords::sentenceFor(outcome), sentence);
    }
};

QTEST_APPLESS_MAIN(WindowStateTest)
#include "WindowStateTest.moc"
