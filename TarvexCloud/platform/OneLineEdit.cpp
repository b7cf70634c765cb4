#include "OneLineEdit.h"

#include <QKeyEvent>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {
QString joined(QString text)
{
    static const QRegularExpression breaks(u"[\\t-\\r\\x{85}\\x{2028}\\x{2029}]+"_s);
    return text.replace(breaks, u" "_s);
}
} // namespace

OneLineEdit::OneLineEdit(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, &OneLineEdit::joinLines);
}

void OneLineEdit::fillIn(const QString &text)
{
    setText(text);
    m_filledIn = text;
    m_shown = QLineEdit::text();
}

QString OneLineEdit::textOrFilledIn() const
{
    return isChanged() ? joined(text()) : m_filledIn;
}

void OneLineEdit::keyPressEvent(QKeyEvent *event)
{
#ifndef Q_OS_MACOS // where that key types further characters
    if (event->modifiers() == Qt::AltModifier && !event->text().isEmpty())
        return;
#endif
    QLineEdit::keyPressEvent(event);
}

void OneLineEdit::joinLines()
{
    const QString line = joined(text());
    if (line == text())
        return;
    const QString beforeCursor = joined(text().left(cursorPosition()));
    setText(line);
    setCursorPosition(static_cast<int>(beforeCursor.size()));
    setModified(true);
}
