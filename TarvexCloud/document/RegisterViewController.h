#pragma once

#include <QObject>

class BusyIndicator;
class MessageLine;
class QLabel;
class QLineEdit;
class Sheet;

/// The sign-up sheet's window controller. It holds the sheet's controls; what they do is the document's.
class RegisterViewController : public QObject
{
    Q_OBJECT
public:
    /// The sheet owns the controller.
    explicit RegisterViewController(Sheet *window);

    /// Fills the sheet's window, once; the controls exist from then on.
    void buildContents();

    Sheet *window() const { return m_window; }
    /// The name that the account bears; the user signs in with the e-mail address.
    QLineEdit *loginName() const { return m_loginName; }
    void setLoginName(QLineEdit *field) { m_loginName = field; }
    QLineEdit *loginEmail() const { return m_loginEmail; }
    void setLoginEmail(QLineEdit *field) { m_loginEmail = field; }
    QLineEdit *loginPassword() const { return m_loginPassword; }
    void setLoginPassword(QLineEdit *field) { m_loginPassword = field; }
    QLineEdit *loginConfirmPassword() const { return m_loginConfirmPassword; }
    void setLoginConfirmPassword(QLineEdit *field) { m_loginConfirmPassword = field; }
    MessageLine *labelErrorMessage() const { return m_labelErrorMessage; }
    void setLabelErrorMessage(MessageLine *label) { m_labelErrorMessage = label; }
    /// Stays still: signing up spins the sign-in sheet's indicator, and this sheet says in words what is
    /// being done.
    BusyIndicator *indicator() const { return m_indicator; }
    void setIndicator(BusyIndicator *indicator) { m_indicator = indicator; }

    /// The first field without a text, or null.
    QLineEdit *firstEmptyField() const;
    /// The field that the service's message speaks of first, or null.
    QLineEdit *fieldNamedIn(const QString &message) const;
    /// What is being done just now, beside the buttons; empty for nothing.
    void setStatus(const QString &text);
    /// A sentence beneath the message line; an empty one leaves no room there.
    void setHint(const QString &sentence);

Q_SIGNALS:
    void confirmed();

private:
    Sheet *const m_window;
    QLineEdit *m_loginName = nullptr;
    QLineEdit *m_loginEmail = nullptr;
    QLineEdit *m_loginPassword = nullptr;
    QLineEdit *m_loginConfirmPassword = nullptr;
    MessageLine *m_labelErrorMessage = nullptr;
    BusyIndicator *m_indicator = nullptr;
    QLabel *m_labelStatus = nullptr;
    QLabel *m_labelHint = nullptr;
};
