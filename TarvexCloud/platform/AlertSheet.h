#pragma once

#include "Sheet.h"

class QLabel;
class QPushButton;

/// A question put to the user in a sheet: a short message, a sentence that explains it, and two buttons.
/// Escape and the close box stand for the alternate button.
class AlertSheet : public Sheet
{
    Q_OBJECT
public:
    static constexpr int defaultReturn = 1;
    static constexpr int alternateReturn = 0;

    explicit AlertSheet(QWidget *ownWindow);

    /// All are shown as they stand; without a text for it there is no alternate button. Begin the sheet
    /// afterwards.
    void setTexts(const QString &messageText, const QString &informativeText, const QString &defaultButton,
                  const QString &alternateButton);

    /// Shows that picture in place of the sign for a warning.
    void setPicture(const QPixmap &picture);

Q_SIGNALS:
    /// The sheet is down again; the code is one of the two above.
    void ended(int returnCode);

private:
    void end(int returnCode);

    QLabel *m_picture;
    QLabel *m_message;
    QLabel *m_information;
    QPushButton *m_default;
    QPushButton *m_alternate;
};
