#include "MessageLine.h"

#include <QAccessible>
#include <QTextBlock>

namespace {
constexpr qsizetype shownCharacters = 4000;
constexpr int mostLines = 5;
} // namespace

MessageLine::MessageLine(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setFocusPolicy(Qt::ClickFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
}

void MessageLine::setText(const QString &text)
{
    m_text = text;
    const bool cut = text.size() > shownCharacters;
    setPlainText(cut ? text.left(shownCharacters) + u'\u2026' : text);
    updateGeometry();
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

int MessageLine::heightOfLines(int count) const
{
    return count * fontMetrics().lineSpacing() + 2;
}

int MessageLine::shownLines() const
{
    int lines = 0;
    for (QTextBlock block = document()->firstBlock(); block.isValid() && lines < mostLines;
         block = block.next())
        lines += qMax(1, block.layout()->lineCount());
    return qBound(1, lines, mostLines);
}

QSize MessageLine::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 40, heightOfLines(shownLines())};
}

QSize MessageLine::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 10, heightOfLines(shownLines())};
}

void MessageLine::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        updateGeometry(); // another width may wrap into another number of lines
}
