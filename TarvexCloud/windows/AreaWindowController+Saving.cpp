#include "AreaWindowController.h"

#include "AreaValueSlider.h"
#include "BusyIndicator.h"
#include "ElidedLabel.h"
#include "GoalTableModel.h"
#include "GoalTableView.h"
#include "MnemonicLabel.h"
#include "Sheet.h"
#include "SheetBusyScope.h"
#include "TarvexView.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"
#include "WindowServices.h"

#include <algorithm>
#include <optional>

void AreaWindowController::closeAndSavedetailsWindow()
{
    std::optional<ActionOutcome> outcome;
    m_services.runAction(
        [&] {
            if (m_thisWindow->isBegun() && mayEdit())
                outcome = save();
        },
        [this] {
            m_load = Load::EndedEarly;
            showState();
        });
    if (outcome)
        Q_EMIT actionEnded(*outcome);
}

ActionOutcome AreaWindowController::save()
{
    m_tableViewTargets->abortEditing();
    ActionOutcome outcome;
    {
        const SheetBusyScope busy(m_thisWindow, m_areaIndicator);
        const TVXAreaPtr area = mainData()->areas()->at(static_cast<std::size_t>(m_labelAreaName->tag()));
        area->setValueOfArea(m_sliderOfArea->integerValue());
        outcome = {ActionOutcome::Kind::AreaSaved, area->name(), sendAll(*area)};
        storePercent();
    }
    emptyAndClose();
    if (WheelParent *document = m_wheelView->theParent())
        document->updatePercentValues();
    m_wheelView->display();
    return outcome;
}

TVXWritten AreaWindowController::sendAll(const TVXArea &area)
{
    constexpr int requests = 3;
    constexpr int roomForName = 240;
    const QString name =
        m_labelState->fontMetrics().elidedText(singleLineOf(area.name()), Qt::ElideRight, roomForName);
    const WaitNotice notice(tr("Saving %1…").arg(name), requests * m_services.exchange().deadline(),
                            [this](const QString &text) { m_labelState->setText(text); });
    TVXManager manager(m_services.exchange(), m_services.alert());
    const TVXWritten value = manager.setAreaValueOnServerByUsingLogin(
        m_loginUserName, m_loginPassword, /*forArea=*/area.idOfArea(), /*newValue=*/area.valueOfArea());
    const TVXWritten created =
        manager.createGoalsUsingLogin(m_loginUserName, m_loginPassword, *goals(),
                                      /*forSetsId=*/chosenSet()->idOfSets(), /*forAreaId=*/area.idOfArea());
    const TVXWritten deleted =
        manager.deleteGoalsByIdUsingLogin(m_loginUserName, m_loginPassword, m_idsForRemove);
    return std::max({value, created, deleted});
}

void AreaWindowController::storePercent() const
{
    const qint64 index = m_labelAreaName->tag();
    if (index >= 0 && index < TVXSets::areaCount)
        chosenSet()->setPercentOfArea(static_cast<int>(index), QString::number(percentDone(*goals())));
}
