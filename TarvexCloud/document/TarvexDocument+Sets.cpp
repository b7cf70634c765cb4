#include "AlertSheet.h"
#include "DocumentController.h"
#include "ProjectNameSheet.h"
#include "SheetBusyScope.h"
#include "TarvexDocument.h"
#include "TarvexView.h"
#include "TVXManager.h"

#include <algorithm>

using namespace Qt::StringLiterals;

TarvexDocument *TarvexDocument::documentToBorrowFrom() const
{
    return m_wndProjectName ? nullptr : currentDocument(); // with a sheet, this is where the window loaded
}

void TarvexDocument::addNewProject()
{
    if (const TarvexDocument *current = documentToBorrowFrom())
        m_wndProjectName = current->m_wndProjectName;
    if (!m_wndProjectName || !mayOpenSheet())
        return;
    m_wndProjectName->askForName(u""_s, ProjectNameSheet::tagOfNewSet);
    beginSheet(m_wndProjectName);
}

void TarvexDocument::editCurrentProject()
{
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_wndProjectName = current->m_wndProjectName;
        m_wheelView = current->m_wheelView;
        m_listOfProjects = current->m_listOfProjects;
    }
    if (!m_wndProjectName || !mayOpenSheet())
        return;
    m_wndProjectName->askForName(u""_s, ProjectNameSheet::tagOfNewSet);
    const TVXSetsPtr set = selectedSet();
    if (!set)
        return;
    m_wndProjectName->askForName(set->name(), set->idOfSets());
    beginSheet(m_wndProjectName);
}

void TarvexDocument::projectNameSheetClickedOk()
{
    const auto endSheet = [this] {
        m_wndProjectName->endSheet();
        showState();
        m_wheelView->display();
    };
    const auto action = [&] {
        if (!m_wheelView->mainData() || !m_wndProjectName->isBegun())
            return;
        {
            const SheetBusyScope busy(m_wndProjectName, m_wndProjectName->projectNameIndicator());
            const qint64 tag = m_wndProjectName->tag();
            if (tag == ProjectNameSheet::tagOfNewSet)
                createSet(m_wndProjectName->name());
            else
                renameSet(m_wndProjectName->name(), tag);
        }
        endSheet();
    };
    m_controller.runAction(action, [&] {
        m_listOfProjects->reloadData();
        endSheet();
        showIncompleteAnswer();
    });
}

void TarvexDocument::createSet(const QString &name)
{
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    manager.createSestUsingLogin(m_loginUserName, m_loginPassword, name);
    loadSets(*shownSets());
    m_listOfProjects->reloadData();
    m_listOfProjects->selectItemAtIndex(/*index=*/1); // where the service lists the newest set
}

void TarvexDocument::renameSet(const QString &name, qint64 idOfSets)
{
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    manager.renameSestUsingLogin(m_loginUserName, m_loginPassword, name, idOfSets);
    const std::shared_ptr<TVXSetsList> sets = shownSets();
    loadSets(*sets);
    m_listOfProjects->reloadData();
    const TVXSetsPtr renamed = m_wheelView->mainData()->setByName(name);
    const auto found = std::find(sets->begin(), sets->end(), renamed);
    if (found != sets->end())
        m_listOfProjects->selectItemAtIndex(static_cast<int>(found - sets->begin()));
}

void TarvexDocument::projectNameSheetClickedCancel()
{
    m_wndProjectName->endSheet();
}

void TarvexDocument::deleteCurrentProject()
{
    if (!m_deleteAlert || !mayOpenSheet())
        return;
    m_deleteAlert->setTexts(u"Delete?"_s, u"Delete current Set of Goals?"_s, u"Delete"_s, u"Cancel"_s);
    beginSheet(m_deleteAlert);
}

void TarvexDocument::alertDeleteCurrentprojectEded(AlertSheet *, int code, void *)
{
    if (code != AlertSheet::defaultReturn)
        return;
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_listOfProjects = current->m_listOfProjects;
        m_wheelView = current->m_wheelView;
        m_loginUserName = current->m_loginUserName;
        m_loginPassword = current->m_loginPassword;
    }
    m_controller.runAction([this] { deleteSelectedSet(); },
                           [this] {
                               m_listOfProjects->reloadData();
                               showIncompleteAnswer();
                           });
}

void TarvexDocument::deleteSelectedSet()
{
    const std::shared_ptr<TVXSetsList> sets = shownSets();
    if (!sets)
        return;
    const int selected = m_listOfProjects->indexOfSelectedItem();
    const auto index = static_cast<std::size_t>(selected == -1 ? 0 : selected);
    if (index >= sets->size())
        return;
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    manager.deleteSestUsingLogin(m_loginUserName, m_loginPassword, (*sets)[index]->idOfSets());
    loadSets(*sets);
    const int before = m_listOfProjects->indexOfSelectedItem();
    m_listOfProjects->selectItemAtIndex(before == 0 ? 0 : before - 1);
    m_listOfProjects->reloadData();
    showState();
    m_wheelView->display();
}
