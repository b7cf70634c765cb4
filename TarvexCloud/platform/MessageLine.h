#pragma once

#include "WrappedLabel.h"

class QLabel;

/// The message line of a sheet: what the service or the client has to say, word for word. It grows to a few
/// lines, then scrolls.
class MessageLine : public WrappedLabel
{
    Q_OBJECT
public:
    explicit MessageLine(QWidget *parent = nullptr);

    void setText(const QString &text) override;
    /// A text that says what went wrong. A sign stands before it, and assistive tools are told too.
    void setError(const QString &text);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void showText(const QString &text, bool isError);
    int signWidth() const;

    QLabel *m_sign;
};
