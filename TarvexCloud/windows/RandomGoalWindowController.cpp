#include "RandomGoalWindowController.h"

#include "Announcement.h"
#include "BusyIndicator.h"
#include "Sheet.h"
#include "SheetBusyScope.h"
#include "SheetStyle.h"
#include "SliceMark.h"
#include "TarvexView.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"
#include "WindowServices.h"
#include "WrappedLabel.h"

#include "ui_RandomGoalSheet.h"

#include <algorithm>
#include <QPushButton>

namespace {

/// Where the first area with that id stands in the project.
std::optional<std::size_t> indexOfArea(const TVXProjectPtr &project, qint64 id)
{
    if (!project)
        return std::nullopt;
    const TVXAreaList &areas = *project->areas();
    const auto found = std::find_if(areas.begin(), areas.end(),
                                    [&](const TVXAreaPtr &area) { return area->idOfArea() == id; });
    if (found == areas.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - areas.begin());
}

// A goal that is missing counts as one with the ids 0.
qint64 idOf(const TVXGoalPtr &goal)
{
    return goal ? goal->idOfGoal() : 0;
}

qint64 idOfAreaOf(const TVXGoalPtr &goal)
{
    return goal ? goal->idOfArea() : 0;
}

} // namespace

RandomGoalWindowController::RandomGoalWindowController(WindowServices &services, Sheet *myWindow)
    : QObject(myWindow), m_services(services), m_myWindow(myWindow)
{
    connect(myWindow, &Sheet::didBecomeKey, this, &RandomGoalWindowController::windowDidBecomeKey);
    connect(myWindow, &Sheet::cancelRequested, this, &RandomGoalWindowController::closeWindow);
}

void RandomGoalWindowController::buildContents()
{
    if (m_labelGoal)
        return;
    Ui::RandomGoalSheet ui;
    ui.setupUi(m_myWindow);
    m_labelSet = ui.labelSet;
    m_sliceMark = ui.sliceMark;
    m_labelArea = ui.labelArea;
    m_labelGoal = ui.labelGoal;
    m_labelHint = ui.labelRandomGoalHint;
    m_progress = ui.progress;
    SheetStyle::makeTitle(ui.labelRandomGoalTitle);
    QFont large = m_labelGoal->font();
    large.setPixelSize(qRound(QFontInfo(large).pixelSize() * 1.25));
    m_labelGoal->setFont(large);
    m_labelGoal->setLines(/*least=*/5, /*most=*/5);
    m_labelArea->setLines(/*least=*/1, /*most=*/2);
    ui.areaRow->addStrut(m_sliceMark->sizeHint().height()); // as high without the mark

    // Return asks for another goal: it must not mark one done by accident.
    QPushButton *next = ui.randomGoalButtons->addButton(tr("Next Goal"), QDialogButtonBox::AcceptRole);
    m_done = ui.randomGoalButtons->addButton(tr("Mark as &Done"), QDialogButtonBox::ActionRole);
    QPushButton *close = ui.randomGoalButtons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    next->setDefault(true);
    next->setFocus();
    SheetStyle::setTabOrderAsShown(ui.randomGoalButtons);
    connect(next, &QPushButton::clicked, this, &RandomGoalWindowController::nextGoal);
    connect(m_done, &QPushButton::clicked, this, &RandomGoalWindowController::done);
    connect(close, &QPushButton::clicked, this, &RandomGoalWindowController::closeWindow);
    setCurrentSet(m_currentSet);
    windowDidLoad();
}

void RandomGoalWindowController::windowDidLoad()
{
    setIsAlreadyLoaded(/*loaded=*/false);
}

TarvexView *RandomGoalWindowController::wheelView() const
{
    return m_wheelView;
}

void RandomGoalWindowController::setWheelView(TarvexView *view)
{
    m_wheelView = view;
}

void RandomGoalWindowController::setCurrentSet(const TVXSetsPtr &set)
{
    m_currentSet = set;
    if (m_labelSet)
        m_labelSet->setText(set ? set->name() : QString());
}

void RandomGoalWindowController::setIsAlreadyLoaded(bool loaded)
{
    m_isAlreadyLoaded = loaded;
    if (loaded)
        return;
    m_isWaiting = true;
    m_wasAreaNamed = false;
    m_indexOfArea.reset();
    if (m_labelGoal)
        showState();
}

void RandomGoalWindowController::windowDidBecomeKey()
{
    if (m_isAlreadyLoaded)
        return;
    const QPointer self(this); // the document may be gone by then
    m_services.runWhenIdle(
        [self] {
            if (self && !self->m_isAlreadyLoaded && self->m_myWindow->isBegun())
                self->fetchRandomGoal();
        },
        [self] {
            if (self)
                self->showIncompleteAnswer();
        });
}

void RandomGoalWindowController::fetchRandomGoal()
{
    runBusy(tr("Looking for a goal…"), m_services.exchange().deadline(), [this] { showRandomGoal(); });
}

void RandomGoalWindowController::nextGoal()
{
    m_services.runAction([this] { fetchRandomGoal(); }, [this] { showIncompleteAnswer(); });
}

void RandomGoalWindowController::done()
{
    constexpr int requestCount = 2;
    std::optional<ActionOutcome> outcome;
    const auto requests = [&] {
        const TVXGoalPtr goal = m_currentGoal;
        const TVXWritten result = markCurrentGoalDone();
        if (goal)
            outcome = {ActionOutcome::Kind::GoalMarkedDone, goal->nameOfGoal(), result};
        showRandomGoal();
    };
    const auto action = [&] {
        runBusy(tr("Marking the goal done…"), requestCount * m_services.exchange().deadline(), requests);
    };
    m_services.runAction(action, [this] { showIncompleteAnswer(); });
    if (outcome)
        Q_EMIT actionEnded(*outcome);
}

void RandomGoalWindowController::closeWindow()
{
    const auto action = [this] {
        m_myWindow->endSheet();
        if (!m_wheelView)
            return;
        if (WheelParent *parent = m_wheelView->theParent())
            parent->updatePercentValues();
        m_wheelView->display();
    };
    m_services.runAction(action, [] {});
}

void RandomGoalWindowController::runBusy(const QString &doing, std::chrono::milliseconds atMost,
                                         const std::function<void()> &requests)
{
    buildContents();
    {
        const SheetBusyScope busy(m_myWindow, m_progress);
        const WaitNotice notice(doing, atMost, [this](const QString &text) { m_labelHint->setText(text); });
        m_myWindow->repaint(); // seen before the request leaves, however soon it is answered
        requests();
    }
    showState();
    sayState();
}

TVXWritten RandomGoalWindowController::markCurrentGoalDone()
{
    TVXManager manager(m_services.exchange(), m_services.alert());
    QString whyNoAnswer;
    const QString percent = manager.setCheckedUsingLogin(
        m_loginUserName, m_loginPassword, /*goal=*/idOf(m_currentGoal), /*whyNoAnswer=*/&whyNoAnswer);
    tickInProject();
    if (!whyNoAnswer.isNull())
        return TVXWritten::Unknown;
    if (percent.isEmpty())
        return TVXWritten::Refused;
    const std::optional<std::size_t> index = indexOfArea(m_currentProject, idOfAreaOf(m_currentGoal));
    if (m_currentSet && index && *index < TVXSets::areaCount)
        m_currentSet->setPercentOfArea(static_cast<int>(*index), percent);
    return TVXWritten::Done;
}

void RandomGoalWindowController::tickInProject()
{
    if (!m_currentProject)
        return;
    const TVXGoalList &goals = *m_currentProject->goals();
    const auto goal = std::find_if(goals.begin(), goals.end(), [this](const TVXGoalPtr &candidate) {
        return candidate->idOfGoal() == idOf(m_currentGoal);
    });
    if (goal != goals.end())
        (*goal)->setIsChecked(true);
}

void RandomGoalWindowController::showRandomGoal()
{
    TVXManager manager(m_services.exchange(), m_services.alert());
    m_currentGoal = manager.getRandomGoalUsingLogin(m_loginUserName, m_loginPassword,
                                                    /*forSetsId=*/m_currentSet ? m_currentSet->idOfSets() : 0,
                                                    /*whyNoAnswer=*/&m_whyNoAnswer);
    m_labelGoal->setTitleWithMnemonic(m_currentGoal ? m_currentGoal->nameOfGoal() : QString());
    m_isWaiting = false;
    m_isAlreadyLoaded = true;
    const TVXProjectPtr project = m_wheelView ? m_wheelView->mainData() : nullptr;
    m_indexOfArea = indexOfArea(project, idOfAreaOf(m_currentGoal));
    if (!m_indexOfArea)
        return;
    m_labelArea->setTitleWithMnemonic(project->areas()->at(*m_indexOfArea)->name());
    m_wasAreaNamed = true;
}

bool RandomGoalWindowController::hasGoal() const
{
    return !m_isWaiting && m_currentGoal && !m_currentGoal->nameOfGoal().isNull();
}

void RandomGoalWindowController::showState()
{
    m_done->setEnabled(hasGoal());
    m_labelGoal->setVisible(m_isWaiting || hasGoal());
    // A name kept from an earlier goal stays, in grey; the words of the wait go with the wait.
    m_labelArea->setVisible(m_isWaiting || m_wasAreaNamed);
    m_labelArea->setEnabled(m_isWaiting || m_indexOfArea);
    m_sliceMark->setIndex(m_indexOfArea);
    m_sliceMark->setVisible(m_indexOfArea.has_value());
    m_labelHint->setText(hint());
}

void RandomGoalWindowController::sayState() const
{
    QStringList texts = {m_labelHint->text()}; // with a goal, only where that has no text
    if (hasGoal())
        texts += m_labelGoal->text();
    if (hasGoal() && m_indexOfArea)
        texts += m_labelArea->text();
    Announcement::make(m_myWindow, texts.join(u'\n').trimmed());
}

QString RandomGoalWindowController::hint() const
{
    if (m_isWaiting)
        return {};
    if (hasGoal())
        return m_currentGoal->nameOfGoal().isEmpty() ? tr("This goal has no text.") : QString();
    if (!m_whyNoAnswer.isNull())
        return tr("%1 Next Goal tries again.").arg(m_whyNoAnswer);
    return m_currentGoal ? tr("The service's answer could not be read. Choose Next Goal to try again.")
                         : tr("No goal is left in this set: all are done, or it has none.");
}

void RandomGoalWindowController::showIncompleteAnswer()
{
    if (m_isWaiting)
        m_currentGoal.reset(); // whatever an earlier showing left
    m_isWaiting = false;
    showState();
    m_labelHint->setText(tr("The service's answer was incomplete. Choose Next Goal to try again."));
    Announcement::make(m_myWindow, m_labelHint->text());
}
