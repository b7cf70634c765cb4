#include "TarvexDocument.h"

#include "BusyIndicator.h"
#include "DocumentController.h"
#include "MessageLine.h"
#include "SheetBusyScope.h"
#include "SignInSheet.h"
#include "TarvexView.h"
#include "TVXManager.h"

#include <QLineEdit>
#include <QMainWindow>

using namespace Qt::StringLiterals;

TarvexDocument::TarvexDocument(DocumentController &controller)
    : m_controller(controller), m_project(std::make_shared<TVXProject>())
{
}

TarvexDocument::~TarvexDocument()
{
    if (m_listOfProjects)
        m_listOfProjects->removeEventFilter(this); // the window goes only after the outlets
    if (m_listOfProjects && m_listOfProjects->dataSource() == this)
        m_listOfProjects->setDataSource(nullptr);
    if (m_renameController && m_renameController->parent() == this)
        m_renameController->setParent(nullptr);
    if (m_wheelView && m_wheelView->theParent() == this)
        m_wheelView->setTheParent(nullptr);
}

void TarvexDocument::getUserNameAndPassword()
{
    if (m_startGettingUserNameAndPassword) {
        m_startGettingUserNameAndPassword->stop();
        m_startGettingUserNameAndPassword->deleteLater();
        m_startGettingUserNameAndPassword.clear();
    }
    beginSheet(m_wndSignIn);
}

void TarvexDocument::signInAgain()
{
    if (!mayOpenSheet())
        return;
    m_textSignInErrorMessage->setText(u""_s);
    beginSheet(m_wndSignIn);
}

void TarvexDocument::beginSheet(Sheet *sheet)
{
    QMainWindow *mainWindow = m_controller.mainWindow();
    sheet->beginOn(mainWindow ? mainWindow : m_window.get());
}

void TarvexDocument::signIn()
{
    const auto action = [this] {
        const SheetBusyScope busy(m_wndSignIn, m_indicator);
        m_loginUserName = u""_s;
        m_loginPassword = u""_s;
        m_textSignInErrorMessage->setText(u"Checking..."_s);
        m_wndSignIn->setHintShown(/*shown=*/false);
        m_wndSignIn->repaint(); // seen before the request leaves, however soon it is answered
        TVXManager manager(m_controller.exchange(), m_controller.alert());
        const QString answer = manager.signInWithLogin(m_textUsername->text(), m_textPassword->text());
        if (answer != u"OK"_s) {
            m_textSignInErrorMessage->setText(answer);
            m_wndSignIn->setHintShown(answer == u"Error"_s);
            return;
        }
        loadStartupDataForLogin(m_textUsername->text(), m_textPassword->text());
        m_wndSignIn->endSheet();
    };
    m_controller.runAction(action, [this] {
        m_textSignInErrorMessage->setText(
            tr("The service's answer was incomplete, so not everything could be shown. Try again."));
    });
}

void TarvexDocument::cancel()
{
    close();
}

void TarvexDocument::loadStartupDataForLogin(const QString &login, const QString &andPassword)
{
    m_loginUserName = login;
    m_loginPassword = andPassword;
    startGettingData();
    m_wheelView->setMainData(m_project);
    m_listOfProjects->reloadData();
    m_listOfProjects->selectItemAtIndex(/*index=*/0);
    appendWheelPieces();
    setNamesForAreasOnWindow();
    m_wheelView->setTheParent(this);
    m_wheelView->display();
    updatePercentValues();
    m_isLoaded = true;
    showState();
}

void TarvexDocument::appendWheelPieces()
{
    if (!m_wheelView->piecesOfWheel())
        m_wheelView->setPiecesOfWheel(std::make_shared<WheelPieceList>());
    for (int index = 0; index < areaCount; ++index)
        m_wheelView->piecesOfWheel()->push_back(std::make_shared<WheelPiece>());
}
