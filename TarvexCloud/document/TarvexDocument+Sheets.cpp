#include "AreaWindowController.h"
#include "DocumentController.h"
#include "DocumentWindow.h"
#include "MnemonicLabel.h"
#include "RandomGoalWindowController.h"
#include "TarvexDocument.h"
#include "WrappedLabel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

bool TarvexDocument::mayOpenSheet() const
{
    // Input is blocked by then, but an assistive tool's press and a native menu's choice get past that.
    if (m_controller.isBusy())
        return false;
    const auto dialogs = m_window ? m_window->findChildren<QDialog *>() : QList<QDialog *>();
    return std::none_of(dialogs.begin(), dialogs.end(), [](const QDialog *dialog) {
        const auto *sheet = qobject_cast<const Sheet *>(dialog);
        return sheet ? sheet->isBegun() : dialog->isVisible();
    });
}

void TarvexDocument::showAreaDetails(const TVXAreaPtr &, int ofIndex)
{
    const TVXProjectPtr mainData = m_wheelView ? m_wheelView->mainData() : nullptr;
    if (!mainData || mainData->areas()->empty() || !m_wndAreaDetails || !mayOpenSheet())
        return;
    auto *controller = controllerOf<AreaWindowController>(m_wndAreaDetails);
    controller->buildContents();
    mainData->goals()->clear();
    controller->setWheelView(m_wheelView);
    controller->setAreaIndex(ofIndex);
    controller->setSetsIndex(m_listOfProjects->indexOfSelectedItem());
    controller->setLoginPassword(m_loginPassword);
    controller->setLoginUserName(m_loginUserName);
    controller->setIsAlreadyLoadedDatas(/*loaded=*/false);
    controller->labelAreaName()->setText(u"Please Wait..."_s);
    beginSheet(m_wndAreaDetails);
}

void TarvexDocument::renameAreas()
{
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_wndRenameAreas = current->m_wndRenameAreas;
        m_wheelView = current->m_wheelView;
        m_listOfProjects = current->m_listOfProjects;
        m_loginUserName = current->m_loginUserName;
        m_loginPassword = current->m_loginPassword;
    }
    if (!m_wndRenameAreas || !m_wheelView || !m_wheelView->mainData() || !mayOpenSheet())
        return;
    auto *controller = controllerOf<RenameAreasWindowController>(m_wndRenameAreas);
    controller->buildContents();
    controller->setProject(m_wheelView->mainData());
    controller->setIsAlreadyLoadedDatas(/*loaded=*/false);
    controller->setLoginUserName(m_loginUserName);
    controller->setLoginPassword(m_loginPassword);
    controller->setParent(this);
    beginSheet(m_wndRenameAreas);
}

void TarvexDocument::getRandomGoal()
{
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_wndNextGoals = current->m_wndNextGoals;
        m_wheelView = current->m_wheelView;
        m_listOfProjects = current->m_listOfProjects;
        m_loginUserName = current->m_loginUserName;
        m_loginPassword = current->m_loginPassword;
        m_currentSet = current->m_currentSet;
    }
    const TVXSetsPtr set = selectedSet();
    if (!set || !m_wndNextGoals || !mayOpenSheet())
        return;
    auto *controller = controllerOf<RandomGoalWindowController>(m_wndNextGoals);
    controller->buildContents();
    controller->setIsAlreadyLoaded(/*loaded=*/false);
    controller->setLoginPassword(m_loginPassword);
    controller->setLoginUserName(m_loginUserName);
    controller->setCurrentProject(m_wheelView->mainData());
    controller->setCurrentSet(set);
    controller->setWheelView(m_wheelView);
    controller->labelArea()->setTitleWithMnemonic(u"Please wait..."_s);
    controller->labelGoal()->setTitleWithMnemonic(u"Please wait..."_s);
    beginSheet(m_wndNextGoals);
}
