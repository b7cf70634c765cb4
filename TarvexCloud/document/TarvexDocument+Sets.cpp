#include "AlertSheet.h"
#include "DocumentController.h"
#include "DocumentWindow.h"
#include "Escaping.h"
#include "SheetBusyScope.h"
#include "TarvexDocument.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// What is typed like a token of the wire comes back as the token's character. Both are sent alike.
QString asItComesBack(const QString &name)
{
    return unescapedFromWire(escapedForWire(name));
}

auto isNamed(const QString &name)
{
    return [name](const TVXSetsPtr &set) { return set->name() == name; };
}

// What a write came to shows in the list that was fetched after it.
TVXWritten resultOf(bool isListed, bool isSeen)
{
    if (!isListed)
        return TVXWritten::Unknown;
    return isSeen ? TVXWritten::Done : TVXWritten::Refused;
}

} // namespace

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
        m_wheelView->display();
    };
    const auto action = [&] {
        if (!m_wheelView->mainData() || !m_wndProjectName->isBegun())
            return;
        const ActionOutcome outcome = [this] {
            const SheetBusyScope busy(m_wndProjectName, m_wndProjectName->projectNameIndicator());
            const QString name = asItComesBack(m_wndProjectName->name());
            const qint64 tag = m_wndProjectName->tag();
            const WaitNotice notice(tag == ProjectNameSheet::tagOfNewSet ? tr("Creating the set…")
                                                                         : tr("Renaming the set…"),
                                    2 * m_controller.exchange().deadline(),
                                    [this](const QString &words) { m_wndProjectName->setStatus(words); });
            return tag == ProjectNameSheet::tagOfNewSet ? createSet(name) : renameSet(name, tag);
        }();
        endSheet();
        actionDidEnd(outcome);
    };
    m_controller.runAction(action, [&] {
        m_listOfProjects->reloadData();
        endSheet();
        tellIncompleteAnswer();
    });
}

ActionOutcome TarvexDocument::createSet(const QString &name)
{
    const std::shared_ptr<TVXSetsList> sets = shownSets();
    const auto before = std::count_if(sets->begin(), sets->end(), isNamed(name));
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    manager.createSestUsingLogin(m_loginUserName, m_loginPassword, name);
    const bool isListed = loadSets(*sets);
    m_listOfProjects->reloadData();
    m_listOfProjects->selectItemAtIndex(/*index=*/1); // where the service lists the newest set
    const bool isThere = std::count_if(sets->begin(), sets->end(), isNamed(name)) > before;
    return {ActionOutcome::Kind::SetCreated, name, resultOf(isListed, isThere)};
}

ActionOutcome TarvexDocument::renameSet(const QString &name, qint64 idOfSets)
{
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    manager.renameSestUsingLogin(m_loginUserName, m_loginPassword, name, idOfSets);
    const std::shared_ptr<TVXSetsList> sets = shownSets();
    const bool isListed = loadSets(*sets);
    m_listOfProjects->reloadData();
    const TVXSetsPtr renamed = m_wheelView->mainData()->setByName(name);
    const auto found = std::find(sets->begin(), sets->end(), renamed);
    if (found != sets->end())
        m_listOfProjects->selectItemAtIndex(static_cast<int>(found - sets->begin()));
    const bool isThere = std::any_of(sets->begin(), sets->end(), [&](const TVXSetsPtr &set) {
        return set->idOfSets() == idOfSets && set->name() == name;
    });
    return {ActionOutcome::Kind::SetRenamed, name, resultOf(isListed, isThere)};
}

void TarvexDocument::projectNameSheetClickedCancel()
{
    m_wndProjectName->endSheet();
}

void TarvexDocument::deleteCurrentProject()
{
    if (!m_window || !mayOpenSheet())
        return;
    m_window->deleteAlert()->setTexts(u"Delete?"_s, u"Delete current Set of Goals?"_s, u"Delete"_s,
                                      u"Cancel"_s);
    beginSheet(m_window->deleteAlert());
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
                               tellIncompleteAnswer();
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
    const TVXSetsPtr set = (*sets)[index];
    bool isListed = false;
    whileSaying(tr("Deleting the set…"), /*requests=*/2, [&] {
        TVXManager manager(m_controller.exchange(), m_controller.alert());
        manager.deleteSestUsingLogin(m_loginUserName, m_loginPassword, set->idOfSets());
        isListed = loadSets(*sets);
    });
    const int before = m_listOfProjects->indexOfSelectedItem();
    m_listOfProjects->selectItemAtIndex(before == 0 ? 0 : before - 1);
    m_listOfProjects->reloadData();
    m_wheelView->display();
    const bool isGone = std::none_of(sets->begin(), sets->end(), [&](const TVXSetsPtr &left) {
        return left->idOfSets() == set->idOfSets();
    });
    actionDidEnd({ActionOutcome::Kind::SetDeleted, set->name(), resultOf(isListed, isGone)});
}
