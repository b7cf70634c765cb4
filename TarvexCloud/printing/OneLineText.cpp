#include "OneLineText.h"

#include <algorithm>
#include <QTextLayout>

namespace {
// More than a line of the widest paper holds of the narrowest letter.
constexpr qsizetype longestLine = 2000;

bool endsLine(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

QString firstLineOf(const QString &text)
{
    const auto end = std::find_if(text.begin(), text.begin() + std::min(text.size(), longestLine), endsLine);
    return text.first(end - text.begin());
}

/// Letters whose ink stays within the height of their font, unlike stacked marks or a fallback font's.
bool isPlain(const QString &text)
{
    constexpr char16_t firstCombiningMark = 0x300;
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c < QChar(firstCombiningMark); });
}
} // namespace

void drawOneLine(QPainter &painter, const QRectF &rect, const QString &text, const TextAttributes &attributes)
{
    const QString shown = firstLineOf(text);
    if (shown.isEmpty())
        return;
    QTextLayout layout(shown, attributes.font, painter.device());
    QTextOption option(attributes.alignment | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(rect.width());
    layout.endLayout();

    const QPointF position(rect.x(), rect.y() + std::max((rect.height() - line.height()) / 2, 0.0));
    if (isPlain(shown) && line.height() <= rect.height() && line.naturalTextWidth() <= rect.width()) {
        layout.draw(&painter, position);
        return;
    }
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    layout.draw(&painter, position);
    painter.restore();
}
