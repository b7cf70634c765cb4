#include "BusyIndicator.h"
#include "MessageLine.h"
#include "ProjectNameSheet.h"
#include "SignInSheet.h"
#include "TarvexDocument.h"
#include "TarvexView.h"

#include <QLineEdit>

TarvexView *TarvexDocument::wheelView() const
{
    return m_wheelView;
}

void TarvexDocument::setWheelView(TarvexView *wheelView)
{
    m_wheelView = wheelView;
}

SourcedComboBox *TarvexDocument::listOfProjects() const
{
    return m_listOfProjects;
}

void TarvexDocument::setListOfProjects(SourcedComboBox *listOfProjects)
{
    m_listOfProjects = listOfProjects;
}

SignInSheet *TarvexDocument::wndSignIn() const
{
    return m_wndSignIn;
}

void TarvexDocument::setWndSignIn(SignInSheet *wndSignIn)
{
    m_wndSignIn = wndSignIn;
}

Sheet *TarvexDocument::wndSignUp() const
{
    return m_wndSignUp;
}

void TarvexDocument::setWndSignUp(Sheet *wndSignUp)
{
    m_wndSignUp = wndSignUp;
}

Sheet *TarvexDocument::wndAreaDetails() const
{
    return m_wndAreaDetails;
}

Sheet *TarvexDocument::wndRenameAreas() const
{
    return m_wndRenameAreas;
}

void TarvexDocument::setWndRenameAreas(Sheet *wndRenameAreas)
{
    m_wndRenameAreas = wndRenameAreas;
}

Sheet *TarvexDocument::wndNextGoals() const
{
    return m_wndNextGoals;
}

void TarvexDocument::setWndNextGoals(Sheet *wndNextGoals)
{
    m_wndNextGoals = wndNextGoals;
}

ProjectNameSheet *TarvexDocument::wndProjectName() const
{
    return m_wndProjectName;
}

void TarvexDocument::setWndProjectName(ProjectNameSheet *wndProjectName)
{
    m_wndProjectName = wndProjectName;
}

QLineEdit *TarvexDocument::textProjectName() const
{
    return m_wndProjectName ? m_wndProjectName->textProjectName() : nullptr;
}

void TarvexDocument::setTextProjectName(QLineEdit *textProjectName)
{
    if (m_wndProjectName)
        m_wndProjectName->setTextProjectName(textProjectName);
}

BusyIndicator *TarvexDocument::projectNameIndicator() const
{
    return m_wndProjectName ? m_wndProjectName->projectNameIndicator() : nullptr;
}

void TarvexDocument::setProjectNameIndicator(BusyIndicator *projectNameIndicator)
{
    if (m_wndProjectName)
        m_wndProjectName->setProjectNameIndicator(projectNameIndicator);
}

MessageLine *TarvexDocument::textSignInErrorMessage() const
{
    return m_textSignInErrorMessage;
}

void TarvexDocument::setTextSignInErrorMessage(MessageLine *textSignInErrorMessage)
{
    m_textSignInErrorMessage = textSignInErrorMessage;
}
