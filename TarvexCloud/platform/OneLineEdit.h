#pragma once

#include <QLineEdit>

/// A field whose text is one line as soon as the user changes it, however the change comes: line breaks and
/// tabs, which the toolkit's own field would keep unseen, become a blank each run. A text that was set and
/// left alone stays as it is. Such a change cannot be undone.
class OneLineEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit OneLineEdit(QWidget *parent = nullptr);

    /// Sets the text that a change is told by.
    void fillIn(const QString &text);
    /// Whether another text stands there, be it typed, dictated or set by an assistive tool, of which the
    /// toolkit's isModified() knows the first alone.
    bool isChanged() const { return text() != m_shown; }
    /// What was filled in, word for word, unless it was changed; then what stands there, as one line.
    QString textOrFilledIn() const;

protected:
    /// A mnemonic whose control is off just now is no text.
    void keyPressEvent(QKeyEvent *event) override;

private:
    void joinLines();

    QString m_filledIn;
    QString m_shown; // what the field made of it
};
