#include "DocumentWindow.h"

#include "AlertSheet.h"
#include "Announcement.h"
#include "AreaWindowController.h"
#include "DocumentController.h"
#include "ProjectNameSheet.h"
#include "QuietLabel.h"
#include "RandomGoalWindowController.h"
#include "RegisterViewController.h"
#include "RenameAreasWindowController.h"
#include "SignInSheet.h"
#include "TarvexDocument.h"
#include "WindowState.h"

#include "ui_TarvexDocument.h"

#include <QCloseEvent>
#include <QScreen>

QList<QKeySequence> keysWith(Qt::Key named, QKeySequence::StandardKey command)
{
    QList<QKeySequence> keys = QKeySequence::keyBindings(command);
    if (!keys.contains(named)) // given twice, it would be ambiguous
        keys.append(named);
    return keys;
}

DocumentWindow::DocumentWindow(DocumentController &controller)
    : m_controller(controller), m_ui(std::make_unique<Ui::TarvexDocument>())
{
    m_ui->setupUi(this);
    auto *space = new QWidget(m_ui->setBar);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_ui->setBar->addWidget(space);
    m_ui->setBar->addWidget(m_ui->setSelector);
    m_ui->dialArea->setContents(
        {m_ui->wheelView,
         m_ui->labelMainPercent,
         m_ui->labelMainPercentCaption,
         {m_ui->label1, m_ui->label2, m_ui->label3, m_ui->label4, m_ui->label5, m_ui->label6, m_ui->label7,
          m_ui->label8},
         {m_ui->label1Percent, m_ui->label2Percent, m_ui->label3Percent, m_ui->label4Percent,
          m_ui->label5Percent, m_ui->label6Percent, m_ui->label7Percent, m_ui->label8Percent}});
    m_ui->listOfProjects->installEventFilter(this);
    colourPlaceholder();
    makeSheets(controller);
    fitScreen();
}

DocumentWindow::~DocumentWindow() = default;

void DocumentWindow::makeSheets(DocumentController &controller)
{
    m_projectName = new ProjectNameSheet(this);
    m_deleteAlert = new AlertSheet(this);
    m_signIn = new SignInSheet(this);
    m_signUp = new Sheet(this);
    new RegisterViewController(m_signUp);
    m_areaDetails = new Sheet(this);
    new AreaWindowController(controller, m_areaDetails);
    m_nextGoals = new Sheet(this);
    new RandomGoalWindowController(controller, m_nextGoals);
    m_renameAreas = new Sheet(this);
    new RenameAreasWindowController(controller, m_renameAreas);
}

void DocumentWindow::fitScreen()
{
    const QSize frame(2, 40); // roughly; window managers say so only once the window is up
    resize(size().boundedTo(screen()->availableSize() - frame));
}

void DocumentWindow::connectTo(TarvexDocument &document)
{
    connect(this, &DocumentWindow::closeRequested, &document, &TarvexDocument::close);
    connectOutlets(document);
    connectSheets(document);
    connectCommands(document);
}

void DocumentWindow::connectOutlets(TarvexDocument &document)
{
    document.setLabel1(m_ui->label1);
    document.setLabel2(m_ui->label2);
    document.setLabel3(m_ui->label3);
    document.setLabel4(m_ui->label4);
    document.setLabel5(m_ui->label5);
    document.setLabel6(m_ui->label6);
    document.setLabel7(m_ui->label7);
    document.setLabel8(m_ui->label8);
    document.setLabel1Percent(m_ui->label1Percent);
    document.setLabel2Percent(m_ui->label2Percent);
    document.setLabel3Percent(m_ui->label3Percent);
    document.setLabel4Percent(m_ui->label4Percent);
    document.setLabel5Percent(m_ui->label5Percent);
    document.setLabel6Percent(m_ui->label6Percent);
    document.setLabel7Percent(m_ui->label7Percent);
    document.setLabel8Percent(m_ui->label8Percent);
    document.setLabelMainPercent(m_ui->labelMainPercent);
    document.setWheelView(m_ui->wheelView);
    document.setToolBar(m_ui->toolBar);
    document.setMainWindow(this);

    SourcedComboBox *selector = m_ui->listOfProjects;
    document.setListOfProjects(selector);
    selector->setDataSource(&document);
    connect(selector, &SourcedComboBox::selectionDidChange, &document,
            &TarvexDocument::comboBoxSelectionDidChange);
    connect(selector, &SourcedComboBox::selectionIsChanging, &document,
            &TarvexDocument::comboBoxSelectionIsChanging);
    connect(selector, &SourcedComboBox::willDismiss, &document, &TarvexDocument::comboBoxWillDismiss);
}

void DocumentWindow::connectSheets(TarvexDocument &document)
{
    document.setWndSignIn(m_signIn);
    document.setIndicator(m_signIn->indicator());
    document.setTextUsername(m_signIn->textUsername());
    document.setTextPassword(m_signIn->textPassword());
    document.setTextSignInErrorMessage(m_signIn->textSignInErrorMessage());
    connect(m_signIn, &SignInSheet::signInRequested, &document, &TarvexDocument::signIn);
    connect(m_signIn, &SignInSheet::registerRequested, &document, &TarvexDocument::registerClicked);
    connect(m_signIn, &Sheet::cancelRequested, &document, &TarvexDocument::cancel);

    document.setWndSignUp(m_signUp);
    connect(controllerOf<RegisterViewController>(m_signUp), &RegisterViewController::confirmed, &document,
            &TarvexDocument::cickRegister);
    connect(m_signUp, &Sheet::cancelRequested, &document, &TarvexDocument::cancelRegister);

    document.setWndProjectName(m_projectName);
    connect(m_projectName, &ProjectNameSheet::nameConfirmed, &document,
            &TarvexDocument::projectNameSheetClickedOk);
    connect(m_projectName, &Sheet::cancelRequested, &document,
            &TarvexDocument::projectNameSheetClickedCancel);
    connect(m_deleteAlert, &AlertSheet::ended, &document, [this, &document](int code) {
        document.alertDeleteCurrentprojectEded(m_deleteAlert, code, /*context=*/nullptr);
    });

    connect(controllerOf<AreaWindowController>(m_areaDetails), &AreaWindowController::actionEnded, &document,
            &TarvexDocument::actionDidEnd);
    connect(controllerOf<RandomGoalWindowController>(m_nextGoals), &RandomGoalWindowController::actionEnded,
            &document, &TarvexDocument::actionDidEnd);
    connect(controllerOf<RenameAreasWindowController>(m_renameAreas),
            &RenameAreasWindowController::actionEnded, &document, &TarvexDocument::actionDidEnd);
    document.setWndAreaDetails(m_areaDetails);
    document.setWndNextGoals(m_nextGoals);
    document.setWndRenameAreas(m_renameAreas);
}

void DocumentWindow::connectCommands(TarvexDocument &document)
{
    const auto command = [&document](QAction *action, auto slot,
                                     QKeySequence::StandardKey key = QKeySequence::UnknownKey) {
        connect(action, &QAction::triggered, &document, slot);
        if (key != QKeySequence::UnknownKey)
            action->setShortcuts(key);
    };
    command(
        m_ui->actionNew, [this] { m_controller.newDocument(); }, QKeySequence::New);
    command(
        m_ui->actionOpen, [this] { m_controller.openDocument(); }, QKeySequence::Open);
    command(
        m_ui->actionQuit, [this] { m_controller.quit(); }, QKeySequence::Quit);
    command(m_ui->actionSignIn, &TarvexDocument::signInAgain);
    command(m_ui->actionReload, &TarvexDocument::reload);
    m_ui->actionReload->setShortcuts(keysWith(Qt::Key_F5, QKeySequence::Refresh));
    command(m_ui->actionClose, &TarvexDocument::close, QKeySequence::Close);
    command(m_ui->actionSave, &TarvexDocument::saveDocument, QKeySequence::Save);
    command(m_ui->actionPrintPreview, &TarvexDocument::previewPrint);
    command(m_ui->actionPrint, &TarvexDocument::print, QKeySequence::Print);
    command(m_ui->actionSaveAsPdf, &TarvexDocument::saveAsPdf);
    command(m_ui->actionNewSet, &TarvexDocument::addNewProject);
    command(m_ui->actionRenameSet, &TarvexDocument::editCurrentProject);
    command(m_ui->actionDeleteSet, &TarvexDocument::deleteCurrentProject);
    command(m_ui->actionRandomGoal, &TarvexDocument::getRandomGoal);
    command(m_ui->actionRenameAreas, &TarvexDocument::renameAreas);
    command(m_ui->actionHelp, [this] { m_controller.showManual(); });
    m_ui->actionHelp->setShortcuts(keysWith(Qt::Key_F1, QKeySequence::HelpContents));
    command(m_ui->actionWebSite, &TarvexDocument::gotoWebSite);
    command(m_ui->actionTwitter, &TarvexDocument::gotoTwitter);
    command(m_ui->actionFacebook, &TarvexDocument::gotoFacebook);
    command(m_ui->actionAbout, &TarvexDocument::showAbout);
    connect(m_ui->buttonReload, &QPushButton::clicked, &document, &TarvexDocument::reload);
}

void DocumentWindow::showState(const WindowState &state)
{
    const EnabledCommands enabled = WindowWords::enabledCommands(state);
    m_ui->actionSignIn->setEnabled(enabled.signIn);
    m_ui->actionReload->setEnabled(enabled.reload);
    m_ui->actionNewSet->setEnabled(enabled.newSet);
    for (QAction *ofASet : {m_ui->actionRenameSet, m_ui->actionDeleteSet, m_ui->actionRandomGoal,
                            m_ui->actionPrintPreview, m_ui->actionPrint, m_ui->actionSaveAsPdf})
        ofASet->setEnabled(enabled.changeSet);
    m_ui->actionRenameAreas->setEnabled(enabled.renameAreas);
    m_ui->listOfProjects->setEnabled(enabled.selectSet);
    m_ui->listOfProjects->setPlaceholderText(WindowWords::placeholder(state));
    m_ui->labelAccount->setText(WindowWords::account(state));
    m_ui->buttonReload->setVisible(WindowWords::isReloadOffered(state));
    m_ui->dialArea->setWheelShown(state.isLoaded && state.hasAreas);
    m_ui->dialArea->setPercentsCurrent(state.isSetSelected);
    showStatement(WindowWords::statement(state));
    m_ui->centralWidget->layout()->activate(); // or the wheel would be painted where it does not stay
}

void DocumentWindow::showStatement(const QString &text)
{
    if (m_ui->labelGuidance->text() == text)
        return;
    m_ui->labelGuidance->setText(text);
    Announcement::make(this, text);
}

void DocumentWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // the document hides its window itself, after its sheets
    Q_EMIT closeRequested();
}

void DocumentWindow::childEvent(QChildEvent *event)
{
    QMainWindow::childEvent(event);
    auto *sheet = event->polished() ? qobject_cast<Sheet *>(event->child()) : nullptr;
    if (sheet) // whose window takes the keys while it is up
        sheet->addAction(m_ui->actionHelp);
}

bool DocumentWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && watched == m_ui->listOfProjects)
        colourPlaceholder();
    return QMainWindow::eventFilter(watched, event);
}

bool DocumentWindow::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        wrapSelectorIfNeeded();
        makeRoomForStatement();
    }
    return QMainWindow::event(event);
}

void DocumentWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    wrapSelectorIfNeeded();
    makeRoomForStatement();
}

// By itself the toolkit takes the room for a second line from the dial, whose labels would be cut.
void DocumentWindow::makeRoomForStatement()
{
    QWidget *content = m_ui->centralWidget;
    content->setMinimumHeight(content->layout()->totalMinimumHeightForWidth(content->width()));
}

// Where the window is too narrow or the text too large for the set selector to stand beside the commands, it
// gets a row of its own instead of falling off the bar's end.
void DocumentWindow::wrapSelectorIfNeeded()
{
    const int needed = m_ui->toolBar->sizeHint().width() + m_ui->setBar->sizeHint().width();
    const bool wraps = needed > width();
    if (wraps == toolBarBreak(m_ui->setBar))
        return;
    if (wraps)
        insertToolBarBreak(m_ui->setBar);
    else
        removeToolBarBreak(m_ui->setBar);
}

void DocumentWindow::colourPlaceholder()
{
    SourcedComboBox *selector = m_ui->listOfProjects;
    const QColor color = quietShadeOf(selector->palette().color(QPalette::Active, QPalette::ButtonText));
    if (selector->palette().color(QPalette::Active, QPalette::PlaceholderText) == color)
        return;   // setting it changes the palette and leads here again
    QPalette own; // of one colour; all others stay those of the look
    own.setColor(QPalette::PlaceholderText, color);
    selector->setPalette(own);
}
