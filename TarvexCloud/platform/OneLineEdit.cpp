#include "OneLineEdit.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

OneLineEdit::OneLineEdit(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, &OneLineEdit::joinLines);
}

void OneLineEdit::joinLines()
{
    static const QRegularExpression breaks(u"[\\t-\\r\\x{85}\\x{2028}\\x{2029}]+"_s);
    if (!text().contains(breaks))
        return;
    const QString blank = u" "_s;
    const QString beforeCursor = text().left(cursorPosition()).replace(breaks, blank);
    setText(text().replace(breaks, blank));
    setCursorPosition(static_cast<int>(beforeCursor.size()));
    setModified(true);
}
