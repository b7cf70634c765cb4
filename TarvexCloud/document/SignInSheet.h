#pragma once

#include "Sheet.h"

class BusyIndicator;
class MessageLine;
class QLineEdit;

/// The sign-in sheet's window and its controls; what they do is the document's.
class SignInSheet : public Sheet
{
    Q_OBJECT
public:
    explicit SignInSheet(QWidget *ownWindow);

    /// Shows or hides a sentence on what to do about a bare "Error" in the message line.
    void setHintShown(bool shown) { m_hint->setVisible(shown); }

    BusyIndicator *indicator() const { return m_indicator; }
    QLineEdit *textUsername() const { return m_textUsername; }
    QLineEdit *textPassword() const { return m_textPassword; }
    MessageLine *textSignInErrorMessage() const { return m_textSignInErrorMessage; }

Q_SIGNALS:
    void signInRequested();
    void registerRequested();

private:
    QWidget *m_hint;
    BusyIndicator *m_indicator;
    QLineEdit *m_textUsername;
    QLineEdit *m_textPassword;
    MessageLine *m_textSignInErrorMessage;
};
