#pragma once

#include "Sheet.h"

class BusyIndicator;
class MessageLine;
class QLabel;
class QLineEdit;
class QPushButton;

/// The sign-in sheet's window and its controls; what they do is the document's.
class SignInSheet : public Sheet
{
    Q_OBJECT
public:
    explicit SignInSheet(QWidget *ownWindow);

    /// What comes of cancelRequested(), which the button says. A sheet does not know: its owner tells.
    enum class CancelMeans { Cancel, CloseWindow, Quit };
    void setCancelMeans(CancelMeans means);

    /// A sentence beneath the message line; an empty one leaves no room there.
    void setHint(const QString &sentence);

    BusyIndicator *indicator() const { return m_indicator; }
    QLineEdit *textUsername() const { return m_textUsername; }
    QLineEdit *textPassword() const { return m_textPassword; }
    MessageLine *textSignInErrorMessage() const { return m_textSignInErrorMessage; }

Q_SIGNALS:
    void signInRequested();
    void registerRequested();

private:
    QLabel *m_hint;
    QPushButton *m_cancel;
    BusyIndicator *m_indicator;
    QLineEdit *m_textUsername;
    QLineEdit *m_textPassword;
    MessageLine *m_textSignInErrorMessage;
};
