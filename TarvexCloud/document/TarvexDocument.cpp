#include "TarvexDocument.h"

#include "Announcement.h"
#include "BusyIndicator.h"
#include "DialGeometry.h"
#include "DocumentController.h"
#include "DocumentWindow.h"
#include "MessageLine.h"
#include "RegisterViewController.h"
#include "SheetBusyScope.h"
#include "SheetShade.h"
#include "SignInSheet.h"
#include "TarvexView.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"

#include <QScopeGuard>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {
#ifdef Q_OS_MACOS
constexpr bool endsWithLastWindow = false;
#else
constexpr bool endsWithLastWindow = true;
#endif

/// What a message that is the bare word leaves open.
QString hintOnError(const QString &whyNoAnswer)
{
    return whyNoAnswer.isNull()
               ? TarvexDocument::tr("The service did not answer, or could not check the login. Try again in "
                                    "a moment.")
               : whyNoAnswer;
}

} // namespace

TarvexDocument::TarvexDocument(DocumentController &controller)
    : m_controller(controller), m_project(std::make_shared<TVXProject>())
{
}

TarvexDocument::~TarvexDocument()
{
    if (m_listOfProjects && m_listOfProjects->dataSource() == this)
        m_listOfProjects->setDataSource(nullptr);
    auto *renaming = controllerOf<RenameAreasWindowController>(m_wndRenameAreas);
    if (renaming && renaming->parent() == this)
        renaming->setParent(nullptr);
    if (m_wheelView && m_wheelView->theParent() == this)
        m_wheelView->setTheParent(nullptr);
}

QString TarvexDocument::windowNibName() const
{
    return u"TarvexDocument"_s;
}

QMainWindow *TarvexDocument::window() const
{
    return m_window.get();
}

void TarvexDocument::makeWindow()
{
    m_window = std::make_unique<DocumentWindow>(m_controller);
    m_window->setWindowTitle(windowTitleForDocumentDisplayName(displayName()));
    m_window->connectTo(*this);
    m_registerController = controllerOf<RegisterViewController>(m_wndSignUp);
    windowControllerDidLoadNib();
}

void TarvexDocument::windowControllerDidLoadNib()
{
    for (const std::size_t k : {0U, 1U, 2U, 3U, 7U, 6U, 5U, 4U})
        m_percentLabels[k]->setFrameRotation(DialGeometry::percentRotations[k]);
    showState();
    auto *timer = new QTimer(this);
    m_startGettingUserNameAndPassword = timer;
    connect(timer, &QTimer::timeout, this, &TarvexDocument::getUserNameAndPassword);
    timer->start(m_controller.beforeSignIn());
}

void TarvexDocument::getUserNameAndPassword()
{
    if (m_startGettingUserNameAndPassword) {
        m_startGettingUserNameAndPassword->stop();
        m_startGettingUserNameAndPassword->deleteLater();
        m_startGettingUserNameAndPassword.clear();
    }
    wordCancel();
    connect(m_wndSignIn, &Sheet::didBecomeKey, this,
            &TarvexDocument::wordCancel); // windows come and go meanwhile
    beginSheet(m_wndSignIn);
    m_controller.exchange().prepare();
}

void TarvexDocument::wordCancel()
{
    using Means = SignInSheet::CancelMeans;
    const bool isLast = endsWithLastWindow && m_controller.documents().size() == 1;
    m_wndSignIn->setCancelMeans(m_credentialsOfWheel ? Means::Cancel
                                : isLast             ? Means::Quit
                                                     : Means::CloseWindow);
}

void TarvexDocument::signInAgain()
{
    if (!mayOpenSheet())
        return;
    if (windowState().hasAreas)
        m_credentialsOfWheel.emplace(m_loginUserName, m_loginPassword);
    wordCancel();
    m_textSignInErrorMessage->setText(u""_s);
    m_wndSignIn->setHint(QString());
    beginSheet(m_wndSignIn);
}

void TarvexDocument::beginSheet(Sheet *sheet)
{
    tell(QString());
    if (m_window)
        Announcement::make(m_window.get(), QString()); // the sheet has its own to say
    QMainWindow *mainWindow = m_controller.mainWindow();
    sheet->beginOn(mainWindow ? mainWindow : m_window.get());
}

void TarvexDocument::signIn()
{
    const auto action = [this] {
        SheetBusyScope busy(m_wndSignIn, m_indicator);
        m_loginUserName = u""_s;
        m_loginPassword = u""_s;
        m_textSignInErrorMessage->setText(u"Checking..."_s);
        m_wndSignIn->setHint(QString());
        m_wndSignIn->repaint(); // seen before the request leaves, however soon it is answered
        const WaitNotice notice(tr("Signing in…"), 3 * m_controller.exchange().deadline(),
                                [this](const QString &words) { m_wndSignIn->setHint(words); });
        TVXManager manager(m_controller.exchange(), m_controller.alert());
        QString whyNoAnswer;
        const QString answer =
            manager.signInWithLogin(m_textUsername->text(), m_textPassword->text(), &whyNoAnswer);
        if (answer == u"OK"_s) {
            loadStartupDataForLogin(m_textUsername->text(), m_textPassword->text());
            m_wndSignIn->setHint(QString());
            m_wndSignIn->endSheet();
            return;
        }
        m_wndSignIn->setHint(answer == u"Error"_s ? hintOnError(whyNoAnswer) : hintOnStranger(answer));
        m_textSignInErrorMessage->setError(answer);
        if (whyNoAnswer.isNull())
            busy.endInField(m_textPassword);
    };
    m_controller.runAction(action, [this] {
        wordCancel();
        m_wndSignIn->setHint(QString());
        m_textSignInErrorMessage->setError(
            tr("The service's answer was incomplete, so not everything could be shown. Try again."));
    });
}

QString TarvexDocument::hintOnStranger(const QString &answer) const
{
    if (answer.isEmpty() || answer.front().isLetter() || answer.front() == u'{')
        return {};
    return tr("What answers at %1 does not seem to be the service. Ask whoever runs the service whether "
              "another program has taken that place.")
        .arg(m_controller.exchange().address());
}

void TarvexDocument::cancel()
{
    if (!m_credentialsOfWheel) {
        close();
        return;
    }
    std::tie(m_loginUserName, m_loginPassword) = *std::exchange(m_credentialsOfWheel, std::nullopt);
    m_wndSignIn->endSheet();
    showState(); // which may have been shown without a login meanwhile
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

void TarvexDocument::loadStartupDataForLogin(const QString &login, const QString &andPassword)
{
    m_loginUserName = login;
    m_loginPassword = andPassword;
    m_credentialsOfWheel.reset(); // the wheel of before goes now
    m_state.isLoaded = true;
    startGettingData();
    if (m_window)
        SheetShade::setShown(m_window.get(), /*shown=*/false); // or all would be painted again without it
    m_wheelView->setMainData(m_project);
    m_listOfProjects->reloadData();
    m_listOfProjects->selectItemAtIndex(/*index=*/0);
    appendWheelPieces();
    setNamesForAreasOnWindow();
    m_wheelView->setTheParent(this);
    m_wheelView->display();
    updatePercentValues();
    if (!m_wheelView->window()->focusWidget() && m_wheelView->focusPolicy() != Qt::NoFocus)
        m_wheelView->setFocus(); // so that whoever hears the window hears what it is about
}

void TarvexDocument::appendWheelPieces()
{
    if (!m_wheelView->piecesOfWheel())
        m_wheelView->setPiecesOfWheel(std::make_shared<WheelPieceList>());
    for (std::size_t index = 0; index < areaCount; ++index)
        m_wheelView->piecesOfWheel()->push_back(std::make_shared<WheelPiece>());
}

void TarvexDocument::reload()
{
    if (m_state.isLoaded && mayOpenSheet())
        m_controller.runAction([this] { reloadKeepingWhatFails(); }, [this] { tellIncompleteAnswer(); });
}

void TarvexDocument::reloadKeepingWhatFails()
{
    const TVXSetsPtr selected = selectedSet();
    const bool hadFocus = m_wheelView->hasFocus();
    const auto before = std::make_shared<TVXProject>();
    *before->sets() = *m_project->sets();
    *before->areas() = *m_project->areas();
    m_wheelView->setMainData(before); // is shown meanwhile
    {
        const auto putBack = qScopeGuard([&] { // also when an answer ends the action
            if (m_state.haveSetsFailed)
                *m_project->sets() = *before->sets();
            if (m_state.haveAreasFailed)
                *m_project->areas() = *before->areas();
            m_wheelView->setMainData(m_project);
            m_listOfProjects->reloadData();
            if (selected)
                selectSetWithId(selected->idOfSets());
            setNamesForAreasOnWindow();
            showSelectedSet();
            if (hadFocus && m_wheelView->isVisible())
                m_wheelView->setFocus(); // it went elsewhere when the wheel was hidden for want of areas
        });
        whileSaying(tr("Fetching the wheel and its sets…"), /*requests=*/2,
                    [this] { loadStartupDataForLogin(QString(m_loginUserName), QString(m_loginPassword)); });
    }
    tell(WindowWords::reloadOutcome(!m_state.haveSetsFailed, !m_state.haveAreasFailed));
}
