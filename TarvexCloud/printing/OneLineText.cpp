#include "OneLineText.h"

#include <algorithm>
#include <QFontMetricsF>
#include <QTextLayout>

namespace {
// More than a line of the widest paper holds of the narrowest letter.
constexpr qsizetype longestLine = 2000;

bool endsLine(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

// A tab counts as a blank: the next tab stop, measured in the device's own dots, may lie beyond the paper.
QString firstLineOf(const QString &text)
{
    const auto end = std::find_if(text.begin(), text.begin() + std::min(text.size(), longestLine), endsLine);
    return text.first(end - text.begin()).replace(u'\t', u' ');
}

bool isPlainLetter(char16_t c)
{
    constexpr char16_t softHyphen = 0xAD;
    return (c >= u' ' && c < 0x7F) || (c > 0xA0 && c != softHyphen);
}

// The height on which all texts of a row stand, also one whose letters come from another font.
qreal baselineIn(const QRectF &rect, const TextAttributes &attributes)
{
    return rect.y() + std::max((rect.height() - attributes.height()) / 2, 0.0) + attributes.ascent();
}

/// The general case: any text, broken and cut.
void layOutAndDraw(QPainter &painter, const QRectF &rect, const QString &text,
                   const TextAttributes &attributes)
{
    QTextLayout layout(firstLineOf(text), attributes.font(), painter.device());
    QTextOption option(attributes.alignment() | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(rect.width());
    layout.endLayout();
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    layout.draw(&painter, {rect.x(), baselineIn(rect, attributes) - line.ascent()});
    painter.restore();
}
} // namespace

TextAttributes::TextAttributes(const QFont &font, Qt::Alignment alignment)
    : m_font(font), m_alignment(alignment)
{
    const QFontMetricsF metrics(font);
    m_ascent = metrics.ascent();
    m_height = metrics.height();
    for (char16_t c = 0; c < letterCount; ++c)
        if (isPlainLetter(c) && metrics.inFont(c))
            m_advances[c] = static_cast<float>(metrics.horizontalAdvance(QChar(c)));
}

bool TextAttributes::isPlainLine(const QString &text, qreal width) const
{
    float sum = 0;
    for (const QChar c : text) {
        const float advance = c.unicode() < letterCount ? m_advances[c.unicode()] : 0;
        if (advance <= 0)
            return false;
        sum += advance;
        if (static_cast<qreal>(sum) > width)
            return false;
    }
    return true;
}

void drawOneLine(QPainter &painter, const QRectF &rect, const QString &text, const TextAttributes &attributes)
{
    // Nearly every text is a short one in plain letters, and breaking lines takes longer than drawing one.
    const bool isSimple = attributes.alignment() == Qt::AlignLeft && attributes.height() <= rect.height() &&
                          attributes.isPlainLine(text, rect.width());
    if (!isSimple) {
        layOutAndDraw(painter, rect, text, attributes);
        return;
    }
    painter.setFont(attributes.font());
    painter.drawText(QPointF(rect.x(), baselineIn(rect, attributes)), text);
}
