#include "AreaWindowController.h"

#include "Announcement.h"
#include "AreaValueSlider.h"
#include "BusyIndicator.h"
#include "ElidedLabel.h"
#include "GoalTableModel.h"
#include "GoalTableView.h"
#include "MnemonicLabel.h"
#include "Sheet.h"
#include "SheetBusyScope.h"
#include "SheetStyle.h"
#include "TarvexView.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"
#include "WindowServices.h"
#include "Words.h"

#include "ui_AreaSheet.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

/// The name as a title with mnemonics has to be given it.
QString titleOf(QString name)
{
    return name.replace(u'&', u"&&"_s);
}

} // namespace

AreaWindowController::AreaWindowController(WindowServices &services, Sheet *thisWindow)
    : QObject(thisWindow), m_services(services), m_thisWindow(thisWindow)
{
    connect(thisWindow, &Sheet::didBecomeKey, this, &AreaWindowController::windowDidBecomeKey);
    connect(thisWindow, &Sheet::cancelRequested, this, &AreaWindowController::closeAreaDetailsWindow);
}

void AreaWindowController::buildContents()
{
    if (m_save)
        return;
    Ui::AreaSheet ui;
    ui.setupUi(m_thisWindow);
    m_labelAreaName = ui.labelAreaName;
    m_labelSetName = ui.labelSetName;
    m_sliderOfArea = ui.sliderOfArea;
    m_labelRating = ui.labelRating;
    m_tableViewTargets = ui.tableViewTargets;
    m_labelState = ui.labelState;
    m_downloadIndicator = ui.downloadIndicator;
    m_areaIndicator = ui.areaIndicator;
    m_addGoal = ui.buttonAddGoal;
    m_removeGoal = ui.buttonRemoveGoal;
    m_tryAgain = ui.buttonTryAgain;
    m_keepText = ui.buttonKeepText;
    m_dropText = ui.buttonDropText;
    SheetStyle::makeTitle(m_labelAreaName);
    m_goalModel = new GoalTableModel([this] { return goals(); }, this);
    m_tableViewTargets->setGoals(m_goalModel);
    m_save = ui.areaButtons->addButton(tr("&Save"), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = ui.areaButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_save->setDefault(true);
    for (QPushButton *button : {m_addGoal, m_removeGoal})
        SheetStyle::makeRoomy(button, m_save);
    ui.stateRow->addStrut(m_tryAgain->sizeHint().height()); // as high without its buttons
    // A button that takes the focus by a click would commit the cell that is still being typed into.
    for (QPushButton *button : {m_save, cancel, m_addGoal, m_removeGoal, m_tryAgain, m_keepText, m_dropText})
        button->setFocusPolicy(Qt::TabFocus);
    SheetStyle::setTabOrderAsShown(ui.areaButtons);
    connectControls(cancel);
}

void AreaWindowController::connectControls(QPushButton *cancel)
{
    connect(m_save, &QPushButton::clicked, this, &AreaWindowController::closeAndSavedetailsWindow);
    connect(cancel, &QPushButton::clicked, this, &AreaWindowController::closeAreaDetailsWindow);
    connect(m_addGoal, &QPushButton::clicked, this, &AreaWindowController::addNewGoal);
    connect(m_removeGoal, &QPushButton::clicked, this, &AreaWindowController::removeSelectedGoal);
    connect(m_tryAgain, &QPushButton::clicked, this, &AreaWindowController::tryAgain);
    connect(m_keepText, &QPushButton::clicked, m_tableViewTargets, &GoalTableView::commitEditing);
    connect(m_dropText, &QPushButton::clicked, m_tableViewTargets, &GoalTableView::abortEditing);
    connect(m_tableViewTargets, &GoalTableView::removalRequested, this, [this] {
        if (m_removeGoal->isEnabled())
            removeSelectedGoal();
    });
    connect(m_tableViewTargets, &GoalTableView::editingChanged, this, &AreaWindowController::showState);
    connect(m_tableViewTargets->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &AreaWindowController::showState);
    connect(m_goalModel, &GoalTableModel::dataChanged, this, &AreaWindowController::showState);
    connect(m_sliderOfArea, &QSlider::valueChanged, this, &AreaWindowController::showRating);
}

TarvexView *AreaWindowController::wheelView() const
{
    return m_wheelView;
}

void AreaWindowController::setWheelView(TarvexView *view)
{
    m_wheelView = view;
}

TVXProjectPtr AreaWindowController::mainData() const
{
    return m_wheelView ? m_wheelView->mainData() : nullptr;
}

std::shared_ptr<TVXGoalList> AreaWindowController::goals() const
{
    const TVXProjectPtr project = mainData();
    return project ? project->goals() : nullptr;
}

void AreaWindowController::setIsAlreadyLoadedDatas(bool loaded)
{
    m_isAlreadyLoadedDatas = loaded;
    if (loaded)
        return;
    m_load = Load::Waiting;
    m_isAreaShown = false;
    m_addedUnread.clear();
    if (!m_save)
        return;
    m_goalModel->reloadData();
    m_labelSetName->clear();
    nameWindow();
    showState();
}

void AreaWindowController::windowDidBecomeKey()
{
    if (m_isAlreadyLoadedDatas || !mainData())
        return;
    m_isAlreadyLoadedDatas = true;
    const QPointer self(this); // the document may be gone by then
    m_services.runWhenIdle(
        [self] {
            if (self && self->m_thisWindow->isBegun())
                self->load();
        },
        [self] {
            if (self)
                self->loadEndedEarly();
        });
}

void AreaWindowController::load()
{
    goals()->clear();
    m_goalModel->reloadData();
    const TVXProjectPtr project = mainData();
    const TVXAreaPtr area = project->areas()->at(static_cast<std::size_t>(m_areaIndex));
    if (static_cast<std::size_t>(m_setsIndex) < project->sets()->size())
        fetchGoals(*area, *chosenSet());
    else
        m_load = Load::NoSet;
    showArea(*area);
}

void AreaWindowController::fetchGoals(const TVXArea &area, const TVXSets &set)
{
    const SheetBusyScope busy(m_thisWindow, m_downloadIndicator);
    const QString doing = tr("Loading the goals…");
    m_labelState->setText(doing);
    const WaitNotice notice(doing, m_services.exchange().deadline(),
                            [this](const QString &text) { m_labelState->setText(text); });
    m_labelSetName->setText(set.name());
    m_thisWindow->repaint(); // seen before the request leaves, however soon it is answered
    TVXManager manager(m_services.exchange(), m_services.alert());
    TVXGoalList &list = *goals();
    const bool isRead =
        manager.getGoalsFormServeByUsingLogin(m_loginUserName, m_loginPassword, /*forArea=*/area.idOfArea(),
                                              /*forSets=*/set.idOfSets(), list);
    m_load = isRead ? Load::Good : Load::Unread;
    m_idsForRemove.clear();
    for (const TVXGoalPtr &goal : list)
        m_idsForRemove.push_back(static_cast<qint32>(goal->idOfGoal()));
    list.insert(list.end(), m_addedUnread.begin(), m_addedUnread.end());
}

void AreaWindowController::tryAgain()
{
    m_services.runAction(
        [this] {
            if (!m_thisWindow->isBegun() || !mainData())
                return;
            m_tableViewTargets->commitEditing();
            if (m_load == Load::Unread)
                m_addedUnread = *goals();
            load();
        },
        [this] { loadEndedEarly(); });
}

void AreaWindowController::loadEndedEarly()
{
    m_load = Load::EndedEarly;
    const QString name = areaName();
    m_labelAreaName->setTitleWithMnemonic(name.isNull() ? tr("No such area") : titleOf(name));
    m_goalModel->reloadData();
    showState();
    Announcement::make(m_thisWindow, stateText());
}

QString AreaWindowController::areaName() const
{
    const TVXProjectPtr project = mainData();
    const auto index = static_cast<std::size_t>(m_areaIndex); // a negative one is past every end
    return project && index < project->areas()->size() ? (*project->areas())[index]->name() : QString();
}

void AreaWindowController::nameWindow()
{
    const QString name = singleLineOf(areaName()).replace(u"[*]"_s, u"[*][*]"_s); // the toolkit's own mark
    m_thisWindow->setWindowTitle(name.trimmed().isEmpty() ? tr("Area") : name);
}

void AreaWindowController::showArea(const TVXArea &area)
{
    m_tableViewTargets->setHidden(false);
    if (!m_isAreaShown)
        m_sliderOfArea->setIntegerValue(area.valueOfArea());
    m_isAreaShown = true;
    m_labelAreaName->setTitleWithMnemonic(titleOf(area.name()));
    m_labelAreaName->setTag(m_areaIndex);
    m_goalModel->reloadData();
    showRating();
    showState();
    if (m_load != Load::Good)
        Announcement::make(m_thisWindow, stateText());
    if (m_goalModel->rowCount() > 0)
        m_tableViewTargets->showRow(/*row=*/0);
    m_tableViewTargets->setFocus();
}

TVXSetsPtr AreaWindowController::chosenSet() const
{
    return mainData()->sets()->at(static_cast<std::size_t>(m_setsIndex)); // a negative one is past every end
}

void AreaWindowController::closeAreaDetailsWindow()
{
    m_services.runAction(
        [this] {
            m_tableViewTargets->abortEditing();
            emptyAndClose();
            if (m_wheelView)
                m_wheelView->display();
        },
        [] {});
}

void AreaWindowController::emptyAndClose()
{
    if (const auto list = goals())
        list->clear();
    m_goalModel->reloadData();
    m_thisWindow->endSheet();
}

void AreaWindowController::addNewGoal()
{
    const std::shared_ptr<TVXGoalList> list = goals();
    if (!list || m_services.isBusy())
        return;
    m_tableViewTargets->commitEditing();
    auto goal = std::make_shared<TVXGoal>();
    goal->setIdOfGoal(static_cast<qint64>(list->size()) + 1); // a placeholder that is never sent
    goal->setNameOfGoal(u"New Goal"_s);
    goal->setPriorityOfGoal(*Words::priorityOfWord(u"Normal"_s));
    m_goalModel->addGoal(goal);
    m_tableViewTargets->showRow(m_goalModel->rowCount() - 1);
    m_tableViewTargets->openCell(m_tableViewTargets->currentIndex());
}

void AreaWindowController::removeSelectedGoal()
{
    m_services.runAction(
        [this] {
            if (!goals())
                return;
            m_tableViewTargets->commitEditing();
            const int row = m_tableViewTargets->selectedRow();
            m_goalModel->removeGoalAtRow(row);
            if (m_goalModel->rowCount() > 0)
                m_tableViewTargets->showRow(row);
            showState();
        },
        [] {});
}

void AreaWindowController::showRating()
{
    const qint32 value = m_sliderOfArea->integerValue();
    const QString word = Words::rating(value);
    m_labelRating->setText(word.isEmpty() ? QString::number(value)
                                          : QString::number(value) + u" - "_s + word);
    m_sliderOfArea->setAccessibleDescription(word);
    if (m_sliderOfArea->hasFocus())
        Announcement::make(m_thisWindow, word);
}

QString AreaWindowController::stateText() const
{
    if (m_load == Load::Waiting)
        return tr("Loading the goals…");
    if (m_load == Load::NoSet)
        return !mainData() || mainData()->sets()->empty()
                   ? tr("Goals belong to a set, and there is no set. Create one, then open the area again.")
                   : tr("Choose a set, then open the area again.");
    if (m_load == Load::EndedEarly)
        return tr("The goals could not be loaded, so nothing can be saved.");
    if (m_tableViewTargets->hasChangedText())
        return tr("Return keeps the text, Escape drops it. Then save.");
    if (m_tableViewTargets->isEditingText())
        return tr("Return keeps the text, Escape drops it.");
    if (m_load == Load::Unread)
        return tr("The goals could not be loaded. What you save is added to what is stored.");
    const int count = m_goalModel->rowCount();
    return count > 0 ? tr("%1 of %2 done").arg(m_goalModel->doneCount()).arg(count)
                     : tr("An area without goals counts as 100% done");
}

void AreaWindowController::showState()
{
    const bool isTextOpen = m_tableViewTargets->hasChangedText();
    m_labelState->setText(stateText());
    m_keepText->setVisible(isTextOpen);
    m_dropText->setVisible(isTextOpen);
    m_tryAgain->setVisible(!isTextOpen && (m_load == Load::Unread || m_load == Load::EndedEarly));
    m_tableViewTargets->setPlaceholder(m_load == Load::Good ? tr("No goals yet") : QString());
    m_save->setEnabled(mayEdit() && !isTextOpen); // it would drop the text
    m_save->setToolTip(m_save->isEnabled() ? QString() : stateText());
    m_addGoal->setEnabled(mayEdit());
    m_sliderOfArea->setEnabled(mayEdit());
    const int selected = m_tableViewTargets->selectedRowCount();
    m_removeGoal->setEnabled(mayEdit() && selected == 1);
    m_removeGoal->setToolTip(selected > 1 ? tr("Goals are removed one at a time.") : QString());
}
