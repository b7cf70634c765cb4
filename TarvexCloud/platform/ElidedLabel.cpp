#include "ElidedLabel.h"

#include <algorithm>
#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

// Far more than any window shows; a longer text would only cost layout time.
constexpr qsizetype drawnCharacters = 1000;

bool isShownAsBlank(QChar c)
{
    const QChar::Category category = c.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

} // namespace

QString beginningOf(const QString &text, qsizetype longest)
{
    const bool splitsAPair = longest < text.size() && text.at(longest - 1).isHighSurrogate();
    return text.left(splitsAPair ? longest - 1 : longest);
}

QString singleLineOf(const QString &text)
{
    QString line = beginningOf(text, drawnCharacters);
    if (std::any_of(line.cbegin(), line.cend(), isShownAsBlank))
        std::replace_if(line.begin(), line.end(), isShownAsBlank, QChar(u' '));
    return line;
}

QString shownNameOf(const QString &name)
{
    const auto isSeen = [](QChar c) {
        return !c.isSpace() && !isShownAsBlank(c) && c.category() != QChar::Other_Format;
    };
    QString line = singleLineOf(name);
    return std::any_of(line.cbegin(), line.cend(), isSeen) ? line : ElidedLabel::tr("(no name)");
}

QString plainToolTip(const QString &text)
{
    return u"<p style=\"white-space: pre-wrap\">%1</p>"_s.arg(
        beginningOf(text, drawnCharacters).toHtmlEscaped());
}

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(singleLineOf(text())) + 2, fontMetrics().height() + 2};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 3, fontMetrics().height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const bool cut = fontMetrics().horizontalAdvance(singleLineOf(text())) > contentsRect().width();
    QToolTip::showText(help->globalPos(), cut ? plainToolTip(text()) : QString(), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QString line =
        fontMetrics().elidedText(singleLineOf(text()), Qt::ElideRight, contentsRect().width());
    painter.setPen(palette().color(foregroundRole()));
    // The side a label stands on is given by its place, not by the direction of its text.
    painter.drawText(contentsRect(), static_cast<int>(alignment() | Qt::AlignAbsolute | Qt::TextSingleLine),
                     line);
}
