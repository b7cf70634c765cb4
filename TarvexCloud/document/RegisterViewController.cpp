#include "RegisterViewController.h"

#include "Sheet.h"
#include "SheetStyle.h"

#include "ui_SignUpSheet.h"

#include <QPushButton>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

RegisterViewController::RegisterViewController(Sheet *window) : QObject(window), m_window(window) {}

void RegisterViewController::buildContents()
{
    if (m_loginName)
        return;
    Ui::SignUpSheet ui;
    ui.setupUi(m_window);
    m_loginName = ui.loginName;
    m_loginEmail = ui.loginEmail;
    m_loginPassword = ui.loginPassword;
    m_loginConfirmPassword = ui.loginConfirmPassword;
    m_labelErrorMessage = ui.labelErrorMessage;
    m_indicator = ui.indicator;
    m_labelStatus = ui.labelSignUpStatus;
    m_labelHint = ui.labelSignUpHint;

    // The line is hidden during a request; the sheet must not jump for that.
    QSizePolicy policy = m_labelErrorMessage->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_labelErrorMessage->setSizePolicy(policy);

    SheetStyle::makeTitle(ui.labelSignUpTitle);
    auto *confirm = ui.signUpButtons->addButton(tr("Create Account"), QDialogButtonBox::AcceptRole);
    auto *cancel = ui.signUpButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    confirm->setDefault(true);
    SheetStyle::setTabOrderAsShown(ui.signUpButtons);
    connect(confirm, &QPushButton::clicked, this, &RegisterViewController::confirmed);
    connect(cancel, &QPushButton::clicked, m_window, &Sheet::cancelRequested);
}

QLineEdit *RegisterViewController::firstEmptyField() const
{
    for (QLineEdit *field : {m_loginName, m_loginEmail, m_loginPassword, m_loginConfirmPassword})
        if (field->text().isEmpty())
            return field;
    return nullptr;
}

QLineEdit *RegisterViewController::fieldNamedIn(const QString &message) const
{
    static const QRegularExpression fieldNames(u"\\b(?:(e-?mail|address)|(password)|(?:user)?name)\\b"_s,
                                               QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch found = fieldNames.match(message);
    if (!found.hasMatch())
        return nullptr;
    if (found.hasCaptured(1))
        return m_loginEmail;
    return found.hasCaptured(2) ? m_loginPassword : m_loginName;
}

void RegisterViewController::setStatus(const QString &text)
{
    m_labelStatus->setText(text);
}

void RegisterViewController::setHint(const QString &sentence)
{
    m_labelHint->setText(sentence);
    m_labelHint->setVisible(!sentence.isEmpty());
}
