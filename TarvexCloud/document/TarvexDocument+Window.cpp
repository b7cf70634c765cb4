#include "AlertSheet.h"
#include "BusyIndicator.h"
#include "DocumentController.h"
#include "MessageLine.h"
#include "ProjectNameSheet.h"
#include "SignInSheet.h"
#include "TarvexDocument.h"
#include "TarvexView.h"

#include "ui_TarvexDocument.h"

#include <QEvent>
#include <QLineEdit>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace {
constexpr int millisecondsBeforeSignIn = 500;

/// Keeps the set selector on show: where the window is too narrow or the text too large for it to stand
/// beside the commands, it gets a row of its own instead of falling off the bar's end.
class SelectorWrap : public QObject
{
public:
    SelectorWrap(QMainWindow *window, QToolBar *commands, QToolBar *selector)
        : QObject(window), m_window(window), m_commands(commands), m_selector(selector)
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
            wrapIfNeeded();
        return false;
    }

private:
    void wrapIfNeeded()
    {
        const int needed = m_commands->sizeHint().width() + m_selector->sizeHint().width();
        const bool wraps = needed > m_window->width();
        if (wraps == m_window->toolBarBreak(m_selector))
            return;
        if (wraps)
            m_window->insertToolBarBreak(m_selector);
        else
            m_window->removeToolBarBreak(m_selector);
    }

    QMainWindow *m_window;
    QToolBar *m_commands;
    QToolBar *m_selector;
};
} // namespace

QString TarvexDocument::windowNibName() const
{
    return u"TarvexDocument"_s;
}

void TarvexDocument::makeWindow()
{
    m_window = std::make_unique<QMainWindow>();
    Ui::TarvexDocument ui;
    ui.setupUi(m_window.get());
    m_window->setWindowTitle(windowTitleForDocumentDisplayName(displayName()));
    m_window->installEventFilter(this);

    auto *space = new QWidget(ui.setBar);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    ui.setBar->addWidget(space);
    ui.setBar->addWidget(ui.setSelector);
    new SelectorWrap(m_window.get(), ui.toolBar, ui.setBar);

    connectOutlets();
    connectActions();
    windowControllerDidLoadNib();
}

void TarvexDocument::connectOutlets()
{
    auto *dial = m_window->findChild<DialArea *>(u"dialArea"_s);
    m_dialArea = dial;
    dial->labelsLoaded();
    std::copy(dial->names().begin(), dial->names().end(), m_labels.begin());
    std::copy(dial->percents().begin(), dial->percents().end(), m_percentLabels.begin());
    m_labelMainPercent = dial->findChild<QLabel *>(u"labelMainPercent"_s);
    m_labelMainPercentCaption = dial->findChild<QLabel *>(u"labelMainPercentCaption"_s);
    m_labelMainPercentCaption->hide(); // until there is an average to explain
    m_labelGuidance = m_window->findChild<QLabel *>(u"labelGuidance"_s);
    m_wheelView = dial->findChild<TarvexView *>(u"wheelView"_s);

    m_listOfProjects = m_window->findChild<SourcedComboBox *>(u"listOfProjects"_s);
    m_listOfProjects->setDataSource(this);
    m_listOfProjects->installEventFilter(this);
    colourPlaceholder();

    m_wndProjectName = new ProjectNameSheet(m_window.get());
    m_deleteAlert = new AlertSheet(m_window.get());
    makeSheetControllers();

    m_wndSignIn = new SignInSheet(m_window.get());
    m_indicator = m_wndSignIn->findChild<BusyIndicator *>(u"indicator"_s);
    m_textUsername = m_wndSignIn->findChild<QLineEdit *>(u"textUsername"_s);
    m_textPassword = m_wndSignIn->findChild<QLineEdit *>(u"textPassword"_s);
    m_textSignInErrorMessage = m_wndSignIn->findChild<MessageLine *>(u"textSignInErrorMessage"_s);
}

void TarvexDocument::connectActions()
{
    connect(m_listOfProjects, &SourcedComboBox::selectionDidChange, this,
            &TarvexDocument::comboBoxSelectionDidChange);
    connect(m_listOfProjects, &SourcedComboBox::selectionIsChanging, this,
            &TarvexDocument::comboBoxSelectionIsChanging);
    connect(m_listOfProjects, &SourcedComboBox::willDismiss, this, &TarvexDocument::comboBoxWillDismiss);
    connect(m_wndSignIn, &SignInSheet::signInRequested, this, &TarvexDocument::signIn);
    connect(m_wndSignIn, &SignInSheet::registerRequested, this, &TarvexDocument::registerClicked);
    connect(m_wndSignIn, &Sheet::cancelRequested, this, &TarvexDocument::cancel);

    connect(m_wndProjectName, &ProjectNameSheet::nameConfirmed, this,
            &TarvexDocument::projectNameSheetClickedOk);
    connect(m_wndProjectName, &Sheet::cancelRequested, this, &TarvexDocument::projectNameSheetClickedCancel);
    connect(m_deleteAlert, &AlertSheet::ended, this,
            [this](int code) { alertDeleteCurrentprojectEded(m_deleteAlert, code, /*context=*/nullptr); });

    const auto command = [this](const char *name, auto slot) {
        auto *action = m_window->findChild<QAction *>(QString::fromLatin1(name));
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    command("actionNew", [this] { m_controller.newDocument(); })->setShortcuts(QKeySequence::New);
    command("actionOpen", [this] { m_controller.openDocument(); })->setShortcuts(QKeySequence::Open);
    command("actionSignIn", &TarvexDocument::signInAgain);
    command("actionClose", &TarvexDocument::close)->setShortcuts(QKeySequence::Close);
    command("actionSave", &TarvexDocument::saveDocument)->setShortcuts(QKeySequence::Save);
    command("actionQuit", [this] { m_controller.quit(); })->setShortcuts(QKeySequence::Quit);
    command("actionPrintPreview", &TarvexDocument::previewPrint);
    command("actionPrint", &TarvexDocument::print)->setShortcuts(QKeySequence::Print);
    command("actionSaveAsPdf", &TarvexDocument::saveAsPdf);
    command("actionNewSet", &TarvexDocument::addNewProject);
    command("actionRenameSet", &TarvexDocument::editCurrentProject);
    command("actionDeleteSet", &TarvexDocument::deleteCurrentProject);
    command("actionRandomGoal", &TarvexDocument::getRandomGoal);
    command("actionRenameAreas", &TarvexDocument::renameAreas);
    command("actionWebSite", &TarvexDocument::gotoWebSite);
    command("actionTwitter", &TarvexDocument::gotoTwitter);
    command("actionFacebook", &TarvexDocument::gotoFacebook);
    command("actionAbout", &TarvexDocument::showAbout);
}

void TarvexDocument::windowControllerDidLoadNib()
{
    showState();
    auto *timer = new QTimer(this);
    m_startGettingUserNameAndPassword = timer;
    connect(timer, &QTimer::timeout, this, &TarvexDocument::getUserNameAndPassword);
    timer->start(millisecondsBeforeSignIn);
}

void TarvexDocument::close()
{
    if (!m_window)
        return;
    if (m_startGettingUserNameAndPassword)
        m_startGettingUserNameAndPassword->stop();
    const auto sheets = m_window->findChildren<Sheet *>();
    for (Sheet *sheet : sheets)
        sheet->endSheet();
    m_window->hide();
    m_controller.documentDidClose(this);
}

bool TarvexDocument::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && watched == m_listOfProjects)
        colourPlaceholder();
    if (watched != m_window.get() || event->type() != QEvent::Close)
        return QObject::eventFilter(watched, event);
    event->ignore(); // the document hides its window itself, after its sheets
    close();
    return true;
}
