#include "WindowState.h"
#include "Samples.h"

using namespace Qt::StringLiterals;

class WindowStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStateIsSaidInOneLine_data()
    {
        addSampleRows("states.txt", {"holds", "done", "statement", "placeholder", "offered"});
    }
    void aStateIsSaidInOneLine()
    {
        QFETCH(QByteArray, holds);
        QFETCH(QByteArray, done);
        const auto is = [&](const char *word) { return holds.split(' ').contains(word); };
        const WindowState state{is("loaded"),  is("areas"),      is("areasFailed"),
                                is("sets"),    is("setsFailed"), is("selected"),
                                is("inDoubt"), u"ann"_s,         QString::fromUtf8(done)};
        QTEST(WindowWords::statement(state).toUtf8(), "statement");
        QTEST(WindowWords::placeholder(state).toUtf8(), "placeholder");
        const EnabledCommands enabled = WindowWords::enabledCommands(state);
        QByteArray offered;
        for (const auto &[isOffered, command] :
             {std::pair(enabled.signIn, "signIn "), std::pair(enabled.reload, "reload "),
              std::pair(enabled.newSet, "newSet "), std::pair(enabled.changeSet, "changeSet "),
              std::pair(enabled.renameAreas, "renameAreas "), std::pair(enabled.selectSet, "selectSet "),
              std::pair(WindowWords::isReloadOffered(state), "Reload ")})
            offered += isOffered ? command : "";
        QTEST(offered.trimmed(), "offered");
    }

    void outcomesNameWhatTheyAreAbout_data()
    {
        addSampleRows("outcomes.txt", {"outcome", "name", "sentence"});
    }
    void outcomesNameWhatTheyAreAbout()
    {
        QFETCH(QByteArray, outcome);
        QFETCH(QByteArray, name);
        const QByteArrayList kinds = {"AreaSaved",  "GoalMarkedDone", "AreasRenamed",
                                      "SetCreated", "SetRenamed",     "SetDeleted"};
        const QByteArrayList results = {"Done", "Refused", "Unknown"};
        const ActionOutcome told{static_cast<ActionOutcome::Kind>(kinds.indexOf(outcome.split(' ')[0])),
                                 QString::fromUtf8(name),
                                 static_cast<TVXWritten>(results.indexOf(outcome.split(' ')[1]))};
        QTEST(WindowWords::sentenceFor(told).toUtf8(), "sentence");
    }
};

QTEST_APPLESS_MAIN(WindowStateTest)
#include "WindowStateTest.moc"
