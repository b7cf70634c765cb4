#include "WindowState.h"

#include "ElidedLabel.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

QString tr(const char *sentence)
{
    return QCoreApplication::translate("WindowWords", sentence);
}

// As much of a name as a sentence can bear.
QString shortened(const QString &name)
{
    constexpr qsizetype longest = 40;
    const QString line = singleLineOf(name).trimmed();
    return line.size() > longest ? beginningOf(line, longest - 1).trimmed() + u'…' : line;
}

QString subjectOf(const ActionOutcome &outcome)
{
    const QString name = shortened(outcome.name);
    if (outcome.kind == ActionOutcome::Kind::AreaSaved)
        return name.isEmpty() ? tr("The area") : name;
    return u'“' + (name.isEmpty() ? tr("(no name)") : name) + u'”';
}

struct Sentences
{
    const char *done;
    const char *refused;
    const char *unknown;
};

Sentences sentencesOf(ActionOutcome::Kind kind)
{
    switch (kind) {
    case ActionOutcome::Kind::AreaSaved:
        return {QT_TRANSLATE_NOOP("WindowWords", "%1 was saved."),
                QT_TRANSLATE_NOOP("WindowWords",
                                  "%1 was not stored as it is shown: the service refused. Open it to see."),
                QT_TRANSLATE_NOOP("WindowWords",
                                  "The service did not answer. %1 may not be stored: open it to see.")};
    case ActionOutcome::Kind::GoalMarkedDone:
        return {QT_TRANSLATE_NOOP("WindowWords", "%1 was marked as done."),
                QT_TRANSLATE_NOOP("WindowWords", "The service refused to mark %1 as done."),
                QT_TRANSLATE_NOOP("WindowWords", "The service did not answer. %1 may not be marked as done: "
                                                 "open its area to see.")};
    case ActionOutcome::Kind::AreasRenamed:
        return {QT_TRANSLATE_NOOP("WindowWords", "The names of the areas were saved."),
                QT_TRANSLATE_NOOP("WindowWords",
                                  "The service kept names of areas that differ from those you typed."),
                QT_TRANSLATE_NOOP("WindowWords", "The service did not answer. The names of the areas may not "
                                                 "be stored: choose Reload to see.")};
    case ActionOutcome::Kind::SetCreated:
        return {QT_TRANSLATE_NOOP("WindowWords", "%1 was created."),
                QT_TRANSLATE_NOOP("WindowWords", "The service did not create %1."),
                QT_TRANSLATE_NOOP("WindowWords", "The service did not answer. %1 may not have been created: "
                                                 "choose Reload to see.")};
    case ActionOutcome::Kind::SetRenamed:
        return {QT_TRANSLATE_NOOP("WindowWords", "The set is now called %1."),
                QT_TRANSLATE_NOOP("WindowWords", "The service did not rename the set to %1."),
                QT_TRANSLATE_NOOP("WindowWords", "The service did not answer. The set may not be called %1 "
                                                 "now: choose Reload to see.")};
    case ActionOutcome::Kind::SetDeleted:
        break;
    }
    return {QT_TRANSLATE_NOOP("WindowWords", "%1 was deleted."),
            QT_TRANSLATE_NOOP("WindowWords", "The service did not delete %1."),
            QT_TRANSLATE_NOOP("WindowWords",
                              "The service did not answer. %1 may still be there: choose Reload to see.")};
}

// Of a window that is signed in.
QString missing(const WindowState &state)
{
    if (state.haveAreasFailed && !state.hasAreas && state.haveSetsFailed && !state.hasSets)
        return tr("The wheel could not be loaded. Choose Reload to try again.");
    if (!state.hasAreas)
        return state.haveAreasFailed ? tr("The areas could not be loaded. Choose Reload to fetch them again.")
                                     : tr("The service sent no wheel. Choose Reload to try again.");
    if (!state.hasSets)
        return state.haveSetsFailed ? tr("The sets could not be loaded. Choose Reload to fetch them again.")
                                    : tr("There are no sets yet. Choose New Set to begin with one.");
    return state.isSetSelected ? QString() : tr("Choose a set to see its percentages and goals.");
}

} // namespace

QString WindowWords::statement(const WindowState &state)
{
    if (!state.isLoaded)
        return tr("Sign in to see your wheel, or create an account. F1 opens the manual.");
    const QString absent = missing(state);
    if (state.lastDone.isEmpty())
        return absent.isEmpty() ? tr("Click an area to set its value and edit its goals.") : absent;
    return absent.isEmpty() ? state.lastDone : state.lastDone + u' ' + absent;
}

QString WindowWords::placeholder(const WindowState &state)
{
    if (!state.isLoaded)
        return {};
    if (state.hasSets)
        return tr("Choose a set");
    return state.haveSetsFailed ? tr("Sets not loaded") : tr("No sets");
}

QString WindowWords::account(const WindowState &state)
{
    return state.signedInAs.isEmpty() ? QString() : tr("Signed in as %1").arg(singleLineOf(state.signedInAs));
}

EnabledCommands WindowWords::enabledCommands(const WindowState &state)
{
    EnabledCommands enabled;
    enabled.signIn = state.isLoaded;
    enabled.reload = state.isLoaded;
    enabled.newSet = state.isLoaded;
    enabled.changeSet = state.isLoaded && state.isSetSelected;
    enabled.renameAreas = state.isLoaded && state.hasAreas;
    enabled.selectSet = state.hasSets;
    return enabled;
}

bool WindowWords::isReloadOffered(const WindowState &state)
{
    const bool isAbsent = !state.hasAreas || state.haveAreasFailed || state.haveSetsFailed;
    return state.isLoaded && (isAbsent || state.isInDoubt);
}

QString WindowWords::sentenceFor(const ActionOutcome &outcome)
{
    const Sentences sentences = sentencesOf(outcome.kind);
    const char *sentence = sentences.unknown;
    if (outcome.result != TVXWritten::Unknown)
        sentence = outcome.result == TVXWritten::Done ? sentences.done : sentences.refused;
    const QString text = tr(sentence);
    return text.contains("%1"_L1) ? text.arg(subjectOf(outcome)) : text;
}

QString WindowWords::incompleteAnswer()
{
    return tr("The service's answer was incomplete, so not everything could be shown.");
}

QString WindowWords::reloadOutcome(bool haveSetsCome, bool haveAreasCome)
{
    if (haveSetsCome && haveAreasCome)
        return {};
    if (haveAreasCome)
        return tr("The sets could not be fetched; those shown are as they were before.");
    return haveSetsCome ? tr("The areas could not be fetched; those shown are as they were before.")
                        : tr("Nothing could be fetched; what is shown is as it was before.");
}
