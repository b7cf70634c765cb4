#pragma once

#include "Sheet.h"

class QPushButton;

/// The sign-in sheet's window and its controls; what they do is the document's.
class SignInSheet : public Sheet
{
    Q_OBJECT
public:
    explicit SignInSheet(QWidget *ownWindow);

    /// Greys the fields and buttons out while a request is in flight; the focus comes back afterwards.
    void setControlsEnabled(bool enabled);

    /// Shows or hides a sentence on what to do about a bare "Error" in the message line.
    void setHintShown(bool shown) { m_hint->setVisible(shown); }

Q_SIGNALS:
    void signInRequested();

private:
    QWidget *m_fields;
    QWidget *m_hint;
    QPushButton *m_signIn;
    QPushButton *m_cancel;
    QPointer<QWidget> m_focusBefore;
};
