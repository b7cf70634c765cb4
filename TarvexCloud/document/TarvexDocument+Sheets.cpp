#include "AreaWindowController.h"
#include "DocumentController.h"
#include "MnemonicLabel.h"
#include "ProjectNameSheet.h"
#include "RandomGoalWindowController.h"
#include "RenameAreasWindowController.h"
#include "TarvexDocument.h"
#include "TarvexView.h"
#include "WrappedLabel.h"

#include <algorithm>
#include <QMainWindow>

using namespace Qt::StringLiterals;

void TarvexDocument::makeSheetControllers()
{
    makeSignUpSheet();
    m_wndAreaDetails = new Sheet(m_window.get());
    m_areaController = new AreaWindowController(m_controller, m_wndAreaDetails);
    m_areaController->setParent(m_wndAreaDetails);
    m_wndNextGoals = new Sheet(m_window.get());
    m_randomGoalController = new RandomGoalWindowController(m_controller, m_wndNextGoals);
    m_randomGoalController->QObject::setParent(m_wndNextGoals);
    m_wndRenameAreas = new Sheet(m_window.get());
    m_renameController = new RenameAreasWindowController(m_controller, m_wndRenameAreas);
    m_renameController->QObject::setParent(m_wndRenameAreas);
}

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
    const TVXProjectPtr mainData = m_wheelView->mainData();
    if (!mainData || !mayOpenSheet())
        return;
    m_areaController->buildContents();
    mainData->goals()->clear();
    m_areaController->setWheelView(m_wheelView);
    m_areaController->setAreaIndex(ofIndex);
    m_areaController->setSetsIndex(m_listOfProjects->indexOfSelectedItem());
    m_areaController->setLoginPassword(m_loginPassword);
    m_areaController->setLoginUserName(m_loginUserName);
    m_areaController->setIsAlreadyLoadedDatas(/*loaded=*/false);
    m_areaController->labelAreaName()->setText(u"Please Wait..."_s);
    beginSheet(m_wndAreaDetails);
}

void TarvexDocument::renameAreas()
{
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_wndRenameAreas = current->m_wndRenameAreas;
        m_renameController = current->m_renameController;
        m_wheelView = current->m_wheelView;
        m_listOfProjects = current->m_listOfProjects;
        m_loginUserName = current->m_loginUserName;
        m_loginPassword = current->m_loginPassword;
    }
    if (!m_wndRenameAreas || !m_wheelView->mainData() || !mayOpenSheet())
        return;
    m_renameController->buildContents();
    m_renameController->setProject(m_wheelView->mainData());
    m_renameController->setIsAlreadyLoadedDatas(/*loaded=*/false);
    m_renameController->setLoginUserName(m_loginUserName);
    m_renameController->setLoginPassword(m_loginPassword);
    m_renameController->setParent(this);
    beginSheet(m_wndRenameAreas);
}

void TarvexDocument::getRandomGoal()
{
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_wndNextGoals = current->m_wndNextGoals;
        m_randomGoalController = current->m_randomGoalController;
        m_wheelView = current->m_wheelView;
        m_listOfProjects = current->m_listOfProjects;
        m_loginUserName = current->m_loginUserName;
        m_loginPassword = current->m_loginPassword;
        m_currentSet = current->m_currentSet;
    }
    const TVXSetsPtr set = selectedSet();
    if (!set || !m_wndNextGoals || !mayOpenSheet())
        return;
    m_randomGoalController->buildContents();
    m_randomGoalController->setIsAlreadyLoaded(/*loaded=*/false);
    m_randomGoalController->setLoginPassword(m_loginPassword);
    m_randomGoalController->setLoginUserName(m_loginUserName);
    m_randomGoalController->setCurrentProject(m_wheelView->mainData());
    m_randomGoalController->setCurrentSet(set);
    m_randomGoalController->setWheelView(m_wheelView);
    m_randomGoalController->labelArea()->setTitleWithMnemonic(u"Please wait..."_s);
    m_randomGoalController->labelGoal()->setTitleWithMnemonic(u"Please wait..."_s);
    beginSheet(m_wndNextGoals);
}
