#pragma once

#include "Sheet.h"

/// The sign-in sheet's window and its controls; what they do is the document's.
class SignInSheet : public Sheet
{
    Q_OBJECT
public:
    explicit SignInSheet(QWidget *ownWindow);

    /// Shows or hides a sentence on what to do about a bare "Error" in the message line.
    void setHintShown(bool shown) { m_hint->setVisible(shown); }

Q_SIGNALS:
    void signInRequested();
    void registerRequested();

private:
    QWidget *m_hint;
};
