#include "SignInSheet.h"

#include "ui_SignInSheet.h"

#include <QPushButton>

SignInSheet::SignInSheet(QWidget *ownWindow) : Sheet(ownWindow)
{
    Ui::SignInSheet ui;
    ui.setupUi(this);
    m_fields = ui.fieldsBox;
    m_hint = ui.labelSignInHint;
    m_signIn = ui.signInButtons->addButton(tr("Sign In"), QDialogButtonBox::AcceptRole);
    m_cancel = ui.signInButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_signIn->setDefault(true);
    m_cancel->setAutoDefault(false);
    QFont title = font();
    title.setBold(true);
    title.setPixelSize(qRound(QFontInfo(font()).pixelSize() * 1.25));
    ui.labelSignInTitle->setFont(title);
    ui.textUsername->setFocus();
    connect(m_signIn, &QPushButton::clicked, this, &SignInSheet::signInRequested);
    connect(m_cancel, &QPushButton::clicked, this, &Sheet::cancelRequested);
}

void SignInSheet::setControlsEnabled(bool enabled)
{
    if (!enabled)
        m_focusBefore = focusWidget();
    m_fields->setEnabled(enabled);
    m_signIn->setEnabled(enabled);
    m_cancel->setEnabled(enabled);
    if (enabled && m_focusBefore)
        m_focusBefore->setFocus();
}
