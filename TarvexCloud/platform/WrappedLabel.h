#pragma once

#include <QPlainTextEdit>

/// A label for text of any length from outside: plain, wrapped also inside words too long for a line, and
/// selectable. It takes a bounded number of lines and scrolls beyond; then, and only then, it is a stop of
/// the Tab key.
class WrappedLabel : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit WrappedLabel(QWidget *parent = nullptr);

    /// The whole text; the view shows at most its first twenty thousand characters.
    const QString &text() const { return m_text; }
    virtual void setText(const QString &text);
    /// Undoubles "&&" and drops a single "&". A null title gives an empty text.
    void setTitleWithMnemonic(const QString &title);

    /// How many lines it is high at least, and at most unless its layout gives it more.
    void setLines(int least, int most);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int heightOfText() const;
    void alignLines();

    QString m_text = QStringLiteral("");
    int m_leastLines = 1;
    int m_mostLines = 1;
};
