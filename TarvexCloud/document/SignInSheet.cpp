#include "SignInSheet.h"

#include "SheetStyle.h"

#include "ui_SignInSheet.h"

#include <QPushButton>

SignInSheet::SignInSheet(QWidget *ownWindow) : Sheet(ownWindow)
{
    Ui::SignInSheet ui;
    ui.setupUi(this);
    m_hint = ui.labelSignInHint;
    m_indicator = ui.indicator;
    m_textUsername = ui.textUsername;
    m_textPassword = ui.textPassword;
    m_textSignInErrorMessage = ui.textSignInErrorMessage;
    auto *signIn = ui.signInButtons->addButton(tr("Sign In"), QDialogButtonBox::AcceptRole);
    m_cancel = ui.signInButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    signIn->setDefault(true);
    SheetStyle::setTabOrderAsShown(ui.signInButtons);
    SheetStyle::makeRoomy(ui.registerButton, signIn);
    SheetStyle::makeTitle(ui.labelSignInTitle);
    ui.textUsername->setFocus();
    connect(signIn, &QPushButton::clicked, this, &SignInSheet::signInRequested);
    connect(m_cancel, &QPushButton::clicked, this, &Sheet::cancelRequested);
    connect(ui.registerButton, &QPushButton::clicked, this, &SignInSheet::registerRequested);
}

void SignInSheet::setCancelMeans(CancelMeans means)
{
    switch (means) {
    case CancelMeans::Cancel:
        return m_cancel->setText(tr("Cancel"));
    case CancelMeans::CloseWindow:
        return m_cancel->setText(tr("Close Window"));
    case CancelMeans::Quit:
        return m_cancel->setText(tr("Quit"));
    }
}

void SignInSheet::setHint(const QString &sentence)
{
    m_hint->setText(sentence);
    m_hint->setVisible(!sentence.isEmpty());
}
