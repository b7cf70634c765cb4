#include "AnswerText.h"
#include "DialArea.h"
#include "DocumentController.h"
#include "ElidedLabel.h"
#include "QuietLabel.h"
#include "RotatedLabel.h"
#include "Sheet.h"
#include "TarvexDocument.h"
#include "TarvexView.h"
#include "TVXManager.h"

#include <QAction>
#include <QLabel>
#include <QMainWindow>

void TarvexDocument::startGettingData()
{
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    m_project->sets()->clear();
    m_project->areas()->clear();
    loadSets(*m_project->sets());
    manager.getAreasFormServeByUsingLogin(m_loginUserName, m_loginPassword, *m_project->areas());
}

void TarvexDocument::loadSets(TVXSetsList &sets)
{
    m_hasSetsLoadFailed = true; // also for an answer that ends the action
    TVXManager manager(m_controller.exchange(), m_controller.alert());
    m_hasSetsLoadFailed = !manager.getSetsFromServerByUsingLogin(m_loginUserName, m_loginPassword, sets);
}

bool TarvexDocument::lacksSets() const
{
    return m_hasSetsLoadFailed && m_project->sets()->empty();
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
    if (!set || !m_labelMainPercent) // no labels: a document without a window that borrowed a selector
        return;
    m_currentSet = set;
    quint32 sum = 0; // the sum of the eight wraps at 32 bits
    TarvexView::PercentTexts texts;
    for (int index = 0; index < areaCount; ++index) {
        const QString &percent = set->percentOfArea(index);
        m_percentLabels[static_cast<std::size_t>(index)]->setText(percent + u'%');
        texts[static_cast<std::size_t>(index)] = percent;
        sum += static_cast<quint32>(leadingInteger(percent.toStdString()));
    }
    const qint32 average = static_cast<qint32>(sum) / areaCount;
    m_labelMainPercent->setText(QString::number(average) + u'%');
    m_labelMainPercentCaption->show();
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
    m_wheelView->display();
    enableCommands();
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

void TarvexDocument::showIncompleteAnswer()
{
    if (m_labelGuidance)
        m_labelGuidance->setText(
            tr("The service's answer was incomplete, so not everything could be shown. Try again."));
}

void TarvexDocument::showState()
{
    if (!m_window)
        return;
    const bool hasAreas = !m_project->areas()->empty();
    const bool hasSets = !m_project->sets()->empty();
    QString guidance;
    if (!m_isLoaded)
        guidance = tr("Sign in to see your wheel.");
    else if (!hasAreas)
        guidance = tr("The service sent no wheel. Choose Sign In in the File menu to try again.");
    else if (lacksSets())
        guidance = tr("The sets could not be loaded. Choose Sign In in the File menu to load them again.");
    else if (!hasSets)
        guidance = tr("There are no sets yet. Choose New Set to begin with one.");
    else
        guidance = tr("Click an area to set its value and edit its goals.");
    m_labelGuidance->setText(guidance);
    m_dialArea->setWheelShown(m_isLoaded && hasAreas);
    m_listOfProjects->setPlaceholderText(!m_isLoaded   ? QString()
                                         : hasSets     ? tr("Choose a set")
                                         : lacksSets() ? tr("Sets not loaded")
                                                       : tr("No sets"));
    m_listOfProjects->setEnabled(hasSets);
    enableCommands();
}

void TarvexDocument::colourPlaceholder()
{
    const QColor color =
        quietShadeOf(m_listOfProjects->palette().color(QPalette::Active, QPalette::ButtonText));
    if (m_listOfProjects->palette().color(QPalette::Active, QPalette::PlaceholderText) == color)
        return;   // setting it changes the palette and leads here again
    QPalette own; // of one colour; all others stay those of the look
    own.setColor(QPalette::PlaceholderText, color);
    m_listOfProjects->setPalette(own);
}

void TarvexDocument::enableCommands()
{
    const bool hasSet = selectedSet() != nullptr;
    const auto enable = [this](const char *name, bool enabled) {
        m_window->findChild<QAction *>(QString::fromLatin1(name))->setEnabled(enabled);
    };
    // Cancelling the sheet closes the document, so it is offered again only where there is nothing to lose.
    enable("actionSignIn", m_isLoaded && (m_project->areas()->empty() || lacksSets()));
    enable("actionNewSet", m_isLoaded);
    enable("actionRenameAreas", m_isLoaded && !m_project->areas()->empty());
    enable("actionRenameSet", hasSet);
    enable("actionDeleteSet", !m_project->sets()->empty());
    enable("actionRandomGoal", hasSet);
    enable("actionPrintPreview", hasSet);
    enable("actionPrint", hasSet);
    enable("actionSaveAsPdf", hasSet);
}
