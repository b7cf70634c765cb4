#include "RenameAreasWindowController.h"

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

#include "ui_RenameAreasSheet.h"

#include <algorithm>
#include <limits>
#include <QPushButton>

RenameAreasWindowController::RenameAreasWindowController(WindowServices &services, Sheet *myWindow)
    : QObject(myWindow), m_services(services), m_myWindow(myWindow)
{
    connect(myWindow, &Sheet::didBecomeKey, this, &RenameAreasWindowController::windowDidBecomeKey);
    connect(myWindow, &Sheet::cancelRequested, this, &RenameAreasWindowController::clickCancel);
}

void RenameAreasWindowController::buildContents()
{
    if (m_save)
        return;
    Ui::RenameAreasSheet ui;
    ui.setupUi(m_myWindow);
    m_labelHint = ui.labelRenameAreasHint;
    m_uploadIndicator = ui.uploadIndicator;
    m_textNames = {ui.textName1, ui.textName2, ui.textName3, ui.textName4,
                   ui.textName5, ui.textName6, ui.textName7, ui.textName8};
    const std::array<SliceMark *, fieldCount> marks = {ui.sliceMark1, ui.sliceMark2, ui.sliceMark3,
                                                       ui.sliceMark4, ui.sliceMark5, ui.sliceMark6,
                                                       ui.sliceMark7, ui.sliceMark8};
    for (std::size_t k = 0; k < fieldCount; ++k) {
        m_textNames[k]->setMaxLength(std::numeric_limits<int>::max()); // cut nothing off in silence
        marks[k]->setIndex(k);
    }
    SheetStyle::makeTitle(ui.labelRenameAreasTitle);
    m_save = ui.renameAreasButtons->addButton(tr("Save"), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = ui.renameAreasButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_save->setDefault(true);
    SheetStyle::setTabOrderAsShown(ui.renameAreasButtons);
    connect(m_save, &QPushButton::clicked, this, &RenameAreasWindowController::clickSaveAndClose);
    connect(cancel, &QPushButton::clicked, this, &RenameAreasWindowController::clickCancel);
    setIsAlreadyLoadedDatas(m_isAlreadyLoadedDatas);
}

void RenameAreasWindowController::setIsAlreadyLoadedDatas(bool loaded)
{
    m_isAlreadyLoadedDatas = loaded;
    if (m_save)
        m_save->setEnabled(loaded && areaCount() > 0);
}

std::size_t RenameAreasWindowController::areaCount() const
{
    return m_project ? std::min(m_project->areas()->size(), fieldCount) : 0;
}

void RenameAreasWindowController::windowDidBecomeKey()
{
    if (m_isAlreadyLoadedDatas)
        return;
    buildContents();
    setIsAlreadyLoadedDatas(/*loaded=*/true);
    fillFields();
}

void RenameAreasWindowController::fillFields()
{
    for (std::size_t k = 0; k < fieldCount; ++k) {
        OneLineEdit *field = m_textNames[k];
        const bool hasArea = k < areaCount();
        field->fillIn(hasArea ? m_project->areas()->at(k)->name() : QString());
        field->setCursorPosition(0); // a long name shows its beginning
        field->setEnabled(hasArea);
    }
    if (areaCount() == 0)
        m_labelHint->setText(tr("The service sent no areas, so there is nothing to rename."));
    else
        m_labelHint->setText(tr("Areas run clockwise round the wheel, from the top."));
    QLineEdit *first = textName1();
    first->setFocus();
    first->setSelection(static_cast<int>(first->text().size()), -static_cast<int>(first->text().size()));
}

void RenameAreasWindowController::clickSaveAndClose()
{
    std::optional<ActionOutcome> outcome;
    const auto action = [&] {
        buildContents();
        outcome = saveNames();
        m_myWindow->endSheet();
    };
    m_services.runAction(action, [this] { showIncompleteAnswer(); });
    if (outcome)
        Q_EMIT actionEnded(*outcome);
}

std::optional<ActionOutcome> RenameAreasWindowController::saveNames()
{
    if (!m_project)
        return std::nullopt;
    constexpr int requests = 2;
    const SheetBusyScope busy(m_myWindow, m_uploadIndicator);
    const WaitNotice notice(tr("Saving the names…"), requests * m_services.exchange().deadline(),
                            [this](const QString &text) { m_labelHint->setText(text); });
    nameAreasAsTyped();
    TVXAreaList &areas = *m_project->areas();
    TVXManager manager(m_services.exchange(), m_services.alert());
    const TVXWritten written = manager.renameAreasUsingLogin(m_loginUserName, m_loginPassword, areas);
    areas.clear();
    manager.getAreasFormServeByUsingLogin(m_loginUserName, m_loginPassword, areas);
    showAreasOnWindow();
    return ActionOutcome{ActionOutcome::Kind::AreasRenamed, /*name=*/QString(), written};
}

void RenameAreasWindowController::nameAreasAsTyped()
{
    for (std::size_t k = 0; k < areaCount(); ++k)
        // A field of one line may not hold a name as it is; one that was left alone must not change it.
        m_project->areas()->at(k)->setName(m_textNames[k]->textOrFilledIn());
}

void RenameAreasWindowController::showAreasOnWindow()
{
    if (!m_parent)
        return;
    m_parent->setNamesForAreasOnWindow();
    if (TarvexView *wheel = m_parent->wheelView())
        wheel->display();
}

void RenameAreasWindowController::clickCancel()
{
    m_services.runAction([this] { m_myWindow->endSheet(); }, [] {});
}

void RenameAreasWindowController::showIncompleteAnswer()
{
    showAreasOnWindow(); // the areas that did come
    m_labelHint->setText(tr("The names were sent, but the service's answer was incomplete and areas are "
                            "missing. Save again to fetch them."));
}
