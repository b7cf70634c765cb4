#include "DocumentOutlets.h"

void DocumentOutlets::setWndProjectName(ProjectNameSheet *wndProjectName)
{
    m_wndProjectName = wndProjectName;
    if (m_wndProjectName && m_textProjectName)
        m_wndProjectName->setTextProjectName(m_textProjectName);
    if (m_wndProjectName && m_projectNameIndicator)
        m_wndProjectName->setProjectNameIndicator(m_projectNameIndicator);
}

QLineEdit *DocumentOutlets::textProjectName() const
{
    return m_wndProjectName ? m_wndProjectName->textProjectName() : m_textProjectName.data();
}

void DocumentOutlets::setTextProjectName(QLineEdit *textProjectName)
{
    m_textProjectName = textProjectName;
    if (m_wndProjectName)
        m_wndProjectName->setTextProjectName(textProjectName);
}

BusyIndicator *DocumentOutlets::projectNameIndicator() const
{
    return m_wndProjectName ? m_wndProjectName->projectNameIndicator() : m_projectNameIndicator.data();
}

void DocumentOutlets::setProjectNameIndicator(BusyIndicator *projectNameIndicator)
{
    m_projectNameIndicator = projectNameIndicator;
    if (m_wndProjectName)
        m_wndProjectName->setProjectNameIndicator(projectNameIndicator);
}
