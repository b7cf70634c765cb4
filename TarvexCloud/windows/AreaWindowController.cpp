#include "AreaWindowController.h"

#include "AreaValueSlider.h"
#include "BusyIndicator.h"
#include "GoalTableModel.h"
#include "GoalTableView.h"
#include "MnemonicLabel.h"
#include "Sheet.h"
#include "SheetBusyScope.h"
#include "SheetStyle.h"
#include "TarvexView.h"
#include "TVXManager.h"
#include "WindowServices.h"
#include "Words.h"

#include "ui_AreaSheet.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

/// The name as a title with mnemonics has to be given it.
QString titleOf(const TVXArea &area)
{
    QString title = area.name();
    return title.replace(u'&', u"&&"_s);
}

} // namespace

AreaWindowController::AreaWindowController(WindowServices &services, Sheet *thisWindow)
    : m_services(services), m_thisWindow(thisWindow)
{
    connect(thisWindow, &Sheet::didBecomeKey, this, &AreaWindowController::windowDidBecomeKey);
    connect(thisWindow, &Sheet::cancelRequested, this, &AreaWindowController::closeAreaDetailsWindow);
}

AreaWindowController::~AreaWindowController() = default;

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
    SheetStyle::makeTitle(m_labelAreaName);
    m_goalModel = new GoalTableModel([this] { return goals(); }, this);
    m_tableViewTargets->setGoals(m_goalModel);
    m_save = ui.areaButtons->addButton(tr("&Save"), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = ui.areaButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_save->setDefault(true);
    for (QPushButton *button : {m_addGoal, m_removeGoal})
        SheetStyle::makeRoomy(button, m_save);
    // A button that takes the focus by a click would commit the cell that is still being typed into.
    for (QPushButton *button : {m_save, cancel, m_addGoal, m_removeGoal})
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
    m_isLoadedWell = false;
    m_hasLoadFailed = false;
    if (!m_save)
        return;
    m_goalModel->reloadData();
    m_labelSetName->clear();
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
    TVXGoalList &list = *goals();
    list.clear();
    m_goalModel->reloadData();
    TVXManager manager(m_services.exchange(), m_services.alert());
    TVXAreaPtr area;
    {
        const SheetBusyScope busy(m_thisWindow, m_downloadIndicator);
        area = mainData()->areas()->at(static_cast<std::size_t>(m_areaIndex));
        const TVXSetsPtr set = mainData()->sets()->at(static_cast<std::size_t>(m_setsIndex));
        m_labelSetName->setText(set->name());
        m_thisWindow->repaint(); // seen before the request leaves, however soon it is answered
        m_isLoadedWell = manager.getGoalsFormServeByUsingLogin(m_loginUserName, m_loginPassword,
                                                               /*forArea=*/area->idOfArea(),
                                                               /*forSets=*/set->idOfSets(), list);
        m_idsForRemove.clear();
        for (const TVXGoalPtr &goal : list)
            m_idsForRemove.push_back(static_cast<qint32>(goal->idOfGoal()));
    }
    m_hasLoadFailed = !m_isLoadedWell;
    showArea(area);
}

void AreaWindowController::loadEndedEarly()
{
    m_hasLoadFailed = true;
    const TVXProjectPtr project = mainData();
    const auto index = static_cast<std::size_t>(m_areaIndex); // a negative one is past every end
    const bool hasArea = project && index < project->areas()->size();
    m_labelAreaName->setTitleWithMnemonic(hasArea ? titleOf(*(*project->areas())[index])
                                                  : tr("No such area"));
    m_goalModel->reloadData();
    showState();
}

void AreaWindowController::showArea(const TVXAreaPtr &area)
{
    m_tableViewTargets->setHidden(false);
    m_sliderOfArea->setIntegerValue(area->valueOfArea());
    m_labelAreaName->setTitleWithMnemonic(titleOf(*area));
    m_labelAreaName->setTag(m_areaIndex);
    m_goalModel->reloadData();
    showRating();
    showState();
    if (m_goalModel->rowCount() > 0)
        m_tableViewTargets->showRow(/*row=*/0);
    m_tableViewTargets->setFocus();
}

void AreaWindowController::closeAndSavedetailsWindow()
{
    m_services.runAction(
        [this] {
            if (m_thisWindow->isBegun() && m_isLoadedWell)
                save();
        },
        [this] {
            m_hasLoadFailed = true;
            showState();
        });
}

void AreaWindowController::save()
{
    m_tableViewTargets->abortEditing();
    {
        const SheetBusyScope busy(m_thisWindow, m_areaIndicator);
        const TVXProjectPtr project = mainData();
        const TVXAreaPtr area = project->areas()->at(static_cast<std::size_t>(m_labelAreaName->tag()));
        const qint32 value = m_sliderOfArea->integerValue();
        area->setValueOfArea(value);
        TVXManager manager(m_services.exchange(), m_services.alert());
        manager.setAreaValueOnServerByUsingLogin(m_loginUserName, m_loginPassword,
                                                 /*forArea=*/area->idOfArea(), /*newValue=*/value);
        const TVXSetsPtr set = project->sets()->at(static_cast<std::size_t>(m_setsIndex));
        manager.createGoalsUsingLogin(m_loginUserName, m_loginPassword, *project->goals(),
                                      /*forSetsId=*/set->idOfSets(), /*forAreaId=*/area->idOfArea());
        manager.deleteGoalsByIdUsingLogin(m_loginUserName, m_loginPassword, m_idsForRemove);
        storePercent(*set);
    }
    emptyAndClose();
    if (WheelParent *document = m_wheelView->theParent())
        document->updatePercentValues();
    m_wheelView->display();
}

void AreaWindowController::storePercent(TVXSets &set) const
{
    const qint64 index = m_labelAreaName->tag();
    if (index >= 0 && index < TVXSets::areaCount)
        set.setPercentOfArea(static_cast<int>(index), QString::number(percentDone(*goals())));
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
    m_tableViewTargets->setFocus();
    showState();
}

void AreaWindowController::removeSelectedGoal()
{
    m_services.runAction(
        [this] {
            if (!goals())
                return;
            m_tableViewTargets->abortEditing();
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
}

QString AreaWindowController::stateText() const
{
    const int count = m_goalModel->rowCount();
    if (m_hasLoadFailed && mainData() && mainData()->sets()->empty())
        return tr("Goals belong to a set, and no set is loaded. Cancel, then create one or sign in again.");
    if (m_hasLoadFailed)
        return tr(
            "The goals could not be loaded, so nothing can be saved. Cancel, then open the area again.");
    if (!m_isLoadedWell)
        return tr("Loading the goals…");
    if (m_tableViewTargets->isEditingText())
        return tr("Return keeps the text, Escape drops it.");
    return count > 0 ? tr("%1 of %2 done").arg(m_goalModel->doneCount()).arg(count)
                     : tr("An area without goals counts as 100% done");
}

void AreaWindowController::showState()
{
    const QString state = stateText();
    m_labelState->setText(state);
    m_tableViewTargets->setPlaceholder(m_isLoadedWell ? tr("No goals yet") : QString());
    m_save->setEnabled(m_isLoadedWell);
    m_save->setToolTip(m_hasLoadFailed ? state : QString());
    m_addGoal->setEnabled(m_isLoadedWell);
    m_sliderOfArea->setEnabled(m_isLoadedWell);
    const int selected = m_tableViewTargets->selectedRowCount();
    m_removeGoal->setEnabled(m_isLoadedWell && selected == 1);
    m_removeGoal->setToolTip(selected > 1 ? tr("Goals are removed one at a time.") : QString());
}
