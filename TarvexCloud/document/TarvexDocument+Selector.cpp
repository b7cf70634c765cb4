#include "AnswerText.h"
#include "DocumentController.h"
#include "DocumentWindow.h"
#include "TarvexDocument.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"

#include <algorithm>
#include <QScopeGuard>

void TarvexDocument::startGettingData()
{
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    m_project->sets()->clear();
    m_project->areas()->clear();
    m_state.haveAreasFailed = true; // also for an answer that ends the action
    loadSets(*m_project->sets());
    m_state.haveAreasFailed =
        !manager.getAreasFormServeByUsingLogin(m_loginUserName, m_loginPassword, *m_project->areas());
}

bool TarvexDocument::loadSets(TVXSetsList &sets)
{
    m_state.haveSetsFailed = true; // also for an answer that ends the action
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    m_state.haveSetsFailed = !manager.getSetsFromServerByUsingLogin(m_loginUserName, m_loginPassword, sets);
    return !m_state.haveSetsFailed;
}

void TarvexDocument::setNamesForAreasOnWindow()
{
    if (const TarvexDocument *current = documentToBorrowFrom()) {
        m_labels = current->m_labels;
        m_project = current->m_project;
    }
    const TVXAreaList &areas = *m_project->areas();
    for (std::size_t k = 0; k < m_labels.size() && k < areas.size(); ++k)
        if (m_labels[k])
            m_labels[k]->setText(areas[k]->name());
    showState();
}

std::shared_ptr<TVXSetsList> TarvexDocument::shownSets() const
{
    const TVXProjectPtr mainData = m_wheelView ? m_wheelView->mainData() : nullptr;
    return mainData ? mainData->sets() : nullptr;
}

TVXSetsPtr TarvexDocument::selectedSet() const
{
    const std::shared_ptr<TVXSetsList> sets = shownSets();
    const int index = m_listOfProjects ? m_listOfProjects->indexOfSelectedItem() : -1;
    const bool exists = sets && index >= 0 && static_cast<std::size_t>(index) < sets->size();
    return exists ? (*sets)[static_cast<std::size_t>(index)] : TVXSetsPtr();
}

void TarvexDocument::updatePercentValues()
{
    const TVXSetsPtr set = selectedSet();
    if (!set) {
        if (m_wheelView) // it tells of a set's goals in words
            m_wheelView->setPercentTexts({});
        return;
    }
    m_currentSet = set;
    quint32 sum = 0; // the sum of the eight wraps at 32 bits
    TarvexView::PercentTexts texts;
    for (std::size_t k = 0; k < areaCount; ++k) {
        texts[k] = set->percentOfArea(static_cast<int>(k));
        if (m_percentLabels[k])
            m_percentLabels[k]->setText(texts[k] + u'%');
        sum += static_cast<quint32>(leadingInteger(texts[k].toStdString()));
    }
    const qint32 average = static_cast<qint32>(sum) / static_cast<qint32>(areaCount);
    if (m_labelMainPercent)
        m_labelMainPercent->setText(QString::number(average) + u'%');
    m_wheelView->setPercentTexts(texts);
}

TarvexDocument *TarvexDocument::currentDocument() const
{
    return m_controller.documentOfWindow(m_controller.mainWindow());
}

int TarvexDocument::numberOfItemsInComboBox(const SourcedComboBox *comboBox) const
{
    const std::shared_ptr<TVXSetsList> sets = comboBox == m_listOfProjects ? shownSets() : nullptr;
    return sets ? static_cast<int>(sets->size()) : 0;
}

QString TarvexDocument::comboBoxObjectValueForItemAtIndex(const SourcedComboBox *comboBox, int index) const
{
    const bool exists = index >= 0 && index < numberOfItemsInComboBox(comboBox);
    return exists ? (*shownSets())[static_cast<std::size_t>(index)]->name() : QString();
}

std::shared_ptr<const void> TarvexDocument::comboBoxRecordAtIndex(const SourcedComboBox *comboBox,
                                                                  int index) const
{
    const bool exists = index >= 0 && index < numberOfItemsInComboBox(comboBox);
    return exists ? (*shownSets())[static_cast<std::size_t>(index)] : nullptr;
}

int TarvexDocument::comboBoxIndexOfItemWithStringValue(const SourcedComboBox *comboBox,
                                                       const QString &string) const
{
    for (int index = 0; index < numberOfItemsInComboBox(comboBox); ++index) {
        const QString &name = (*shownSets())[static_cast<std::size_t>(index)]->name();
        if (name.constData() == string.constData() && name.size() == string.size())
            return index;
    }
    return 0;
}

void TarvexDocument::showSelectedSet()
{
    updatePercentValues();
    if (m_wheelView)
        m_wheelView->display();
    tell(QString()); // what was done before concerned another set
}

void TarvexDocument::selectSetWithId(qint64 idOfSets)
{
    const TVXSetsList &sets = *m_project->sets();
    const auto found = std::find_if(sets.begin(), sets.end(),
                                    [&](const TVXSetsPtr &set) { return set->idOfSets() == idOfSets; });
    if (found != sets.end())
        m_listOfProjects->selectItemAtIndex(static_cast<int>(found - sets.begin()));
}

void TarvexDocument::comboBoxSelectionDidChange()
{
    showSelectedSet();
}

void TarvexDocument::comboBoxWillDismiss()
{
    showSelectedSet();
}

void TarvexDocument::comboBoxSelectionIsChanging()
{
    showSelectedSet();
}

WindowState TarvexDocument::windowState() const
{
    WindowState state = m_state;
    state.hasAreas = !m_project->areas()->empty();
    state.hasSets = !m_project->sets()->empty();
    state.isSetSelected = selectedSet() != nullptr;
    if (m_state.isLoaded)
        state.signedInAs = m_loginUserName;
    return state;
}

void TarvexDocument::showState()
{
    if (m_window)
        m_window->showState(windowState());
}

void TarvexDocument::tell(const QString &lastDone, bool isInDoubt)
{
    m_state.lastDone = lastDone;
    m_state.isInDoubt = isInDoubt;
    showState();
}

void TarvexDocument::tellIncompleteAnswer()
{
    tell(WindowWords::incompleteAnswer(), /*isInDoubt=*/true);
}

void TarvexDocument::actionDidEnd(const ActionOutcome &outcome)
{
    if (outcome.kind == ActionOutcome::Kind::AreasRenamed)
        m_state.haveAreasFailed = m_project->areas()->empty(); // they were fetched anew
    tell(WindowWords::sentenceFor(outcome), /*isInDoubt=*/outcome.result == TVXWritten::Unknown);
}

void TarvexDocument::whileSaying(const QString &doing, int requests, const std::function<void()> &action)
{
    if (!m_window) {
        action();
        return;
    }
    m_window->showStatement(doing);
    const WaitNotice notice(doing, requests * m_controller.exchange().deadline(),
                            [this](const QString &text) { m_window->showStatement(text); });
    const auto ended = qScopeGuard([this] { showState(); });
    action();
}
