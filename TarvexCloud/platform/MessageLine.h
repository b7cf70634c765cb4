#pragma once

#include <QPlainTextEdit>

/// The message line of a sheet: what the service or the client has to say, word for word, plain and
/// selectable.
///
/// text() is always the whole text. The view is bounded: it grows to a few lines, then scrolls, and shows at
/// most the first few thousand characters. A new text is announced to assistive tools.
class MessageLine : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit MessageLine(QWidget *parent = nullptr);

    const QString &text() const { return m_text; }
    void setText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int heightOfLines(int count) const;
    int shownLines() const;

    QString m_text = QStringLiteral("");
};
