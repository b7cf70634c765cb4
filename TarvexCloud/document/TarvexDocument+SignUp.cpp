#include "DocumentController.h"
#include "MessageLine.h"
#include "RegisterViewController.h"
#include "SheetBusyScope.h"
#include "SignInSheet.h"
#include "TarvexDocument.h"
#include "TVXExchange.h"
#include "TVXManager.h"
#include "WaitNotice.h"
#include "XKJsonParser.h"

#include <QLineEdit>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {

/// What counts in the service's answer. What is absent, or no string, is empty.
struct SignUpAnswer
{
    QString result = u""_s;
    QString message = u""_s;
};

SignUpAnswer signUpAnswer(const QString &json)
{
    XKJsonParser parser;
    const XKJsonValue dictionary = parser.objectWithString(json);
    SignUpAnswer answer;
    answer.result += dictionary.value(u"result").stringView();
    answer.message += dictionary.value(u"message").stringView();
    return answer;
}

} // namespace

void TarvexDocument::registerClicked()
{
    const auto action = [this] {
        m_registerController->buildContents();
        QLineEdit *const empty = m_registerController->firstEmptyField();
        (empty ? empty : m_registerController->loginName())->setFocus();
        m_wndSignIn->endSheet();
        beginSheet(m_wndSignUp);
    };
    m_controller.runAction(action, [] {});
}

void TarvexDocument::cancelRegister()
{
    const auto action = [this] {
        m_wndSignUp->endSheet();
        beginSheet(m_wndSignIn);
    };
    m_controller.runAction(action, [] {});
}

void TarvexDocument::checkRegister() {}

void TarvexDocument::cickRegister()
{
    const auto action = [this] {
        m_registerController->buildContents();
        m_registerController->setHint(QString());
        if (mayRegister())
            createAccount();
    };
    m_controller.runAction(action, [this] {
        m_registerController->labelErrorMessage()->setError(
            tr("Your account was created, but the service's answer was incomplete, so not everything could "
               "be shown. Cancel, and sign in with your e-mail address."));
    });
}

bool TarvexDocument::mayRegister()
{
    const auto refuse = [this](const QString &message, QLineEdit *field) {
        m_registerController->labelErrorMessage()->setError(message);
        field->setFocus();
        return false;
    };
    if (QLineEdit *const empty = m_registerController->firstEmptyField())
        return refuse(u"You must fill in all fields."_s, empty);
    const TVXManager manager(m_controller.exchange(), m_controller.alert());
    if (!manager.isItValidEmail(m_registerController->loginEmail()->text()))
        return refuse(u"The email address you entered isn't valid."_s, m_registerController->loginEmail());
    QLineEdit *const confirmation = m_registerController->loginConfirmPassword();
    if (confirmation->text() != m_registerController->loginPassword()->text())
        return refuse(u"Your password and confirmation password don't match."_s, confirmation);
    return true;
}

void TarvexDocument::createAccount()
{
    SheetBusyScope busy(m_wndSignUp, /*indicator=*/nullptr);
    const auto idle = qScopeGuard([this] { m_registerController->setStatus(QString()); });
    const auto say = [this](const QString &words) { m_registerController->setStatus(words); };
    const QString email = m_registerController->loginEmail()->text();
    const QString password = m_registerController->loginPassword()->text();
    MessageLine *const line = m_registerController->labelErrorMessage();
    SignUpAnswer answer;
    QString hint; // where there is no message
    {
        line->hide();
        line->setText(u""_s);
        const BusyScope spinning(m_indicator);
        const auto shown = qScopeGuard([line] { line->show(); });
        const QString doing = tr("Creating the account…");
        m_registerController->setStatus(doing);
        const WaitNotice notice(doing, m_controller.exchange().deadline(), say);
        m_wndSignUp->repaint(); // seen before the request leaves, however soon it is answered
        TVXManager manager(m_controller.exchange(), m_controller.alert());
        const QString text =
            manager.createNewUser(m_registerController->loginName()->text(), email, password);
        answer = signUpAnswer(text);
        hint = hintOnStranger(text);
    }
    if (answer.result != u"OK"_s) {
        line->setError(answer.message);
        if (hint.isEmpty())
            hint = tr("The service at %1 did not say whether the account was created. Try again in a moment, "
                      "or cancel and sign in with the e-mail address.")
                       .arg(m_controller.exchange().address());
        m_registerController->setHint(answer.message.isEmpty() ? hint : QString());
        if (QLineEdit *const field = m_registerController->fieldNamedIn(answer.message))
            busy.endInField(field);
        return;
    }
    const QString doing = tr("Fetching the wheel…");
    m_registerController->setStatus(doing);
    const WaitNotice notice(doing, 2 * m_controller.exchange().deadline(), say);
    loadStartupDataForLogin(email, password);
    m_wndSignUp->endSheet();
}
