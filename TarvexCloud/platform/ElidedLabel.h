#pragma once

#include <QLabel>

/// A label of one line for text from outside: always plain, cut with an ellipsis where it is too long, and
/// then at length in its tooltip. Line breaks and control characters count as blanks on the screen; text()
/// keeps them.
class ElidedLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

/// A text's beginning, at most that long, without half a character at its end.
QString beginningOf(const QString &text, qsizetype longest);
/// Text from outside as one line of bounded length, fit for drawing. A text that is so already comes back as
/// the same object, not as a copy.
QString singleLineOf(const QString &text);
/// A name from outside as one line; one that nobody could see has a stand-in.
QString shownNameOf(const QString &name);
/// Text from outside as a tooltip that shows its first thousand characters word for word and wraps. Tooltips
/// guess at markup, hence this.
QString plainToolTip(const QString &text);
