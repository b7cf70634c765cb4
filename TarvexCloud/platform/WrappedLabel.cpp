#include "WrappedLabel.h"

#include "MnemonicLabel.h"

#include <QScrollBar>
#include <QTextBlock>

using namespace Qt::StringLiterals;

constexpr qsizetype shownCharacters = 20'000;

WrappedLabel::WrappedLabel(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setFocusPolicy(Qt::ClickFocus);
    alignLines();
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int, int last) { setFocusPolicy(last > 0 ? Qt::StrongFocus : Qt::ClickFocus); });
}

void WrappedLabel::setText(const QString &text)
{
    m_text = text.isNull() ? u""_s : text;
    const bool cut = m_text.size() > shownCharacters;
    setPlainText(cut ? m_text.left(shownCharacters) + u'\u2026' : m_text);
    updateGeometry();
}

void WrappedLabel::setTitleWithMnemonic(const QString &title)
{
    setText(titleWithoutMnemonics(title));
}

void WrappedLabel::setLines(int least, int most)
{
    m_leastLines = least;
    m_mostLines = most;
    updateGeometry();
}

int WrappedLabel::heightOfText() const
{
    int lines = 0;
    for (QTextBlock block = document()->firstBlock(); block.isValid() && lines < m_mostLines;
         block = block.next())
        lines += qMax(1, block.layout()->lineCount());
    return qBound(m_leastLines, lines, m_mostLines) * fontMetrics().lineSpacing() + 2;
}

QSize WrappedLabel::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 40, heightOfText()};
}

QSize WrappedLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 10, heightOfText()};
}

void WrappedLabel::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        updateGeometry(); // another width may wrap into another number of lines
}

void WrappedLabel::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        alignLines();
}

// By themselves lines would begin on the left whatever the layout.
void WrappedLabel::alignLines()
{
    QTextOption option = document()->defaultTextOption();
    option.setAlignment(isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft);
    document()->setDefaultTextOption(option);
}
