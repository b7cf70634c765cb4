#pragma once

#include <array>
#include <QFont>
#include <QPainter>

/// A font and an alignment, with the font's measures kept so that most texts need not be laid out to know
/// that they fit.
class TextAttributes
{
public:
    TextAttributes() = default;
    /// Left or right, whatever the text's direction.
    explicit TextAttributes(const QFont &font, Qt::Alignment alignment = Qt::AlignLeft);

    const QFont &font() const { return m_font; }
    Qt::Alignment alignment() const { return m_alignment; }
    qreal ascent() const { return m_ascent; }
    qreal height() const { return m_height; }

    /// Whether the text is known to fit into one line of that width with letters of this font alone. A text
    /// of which this is false may fit all the same; only laying it out tells.
    bool isPlainLine(const QString &text, qreal width) const;

private:
    static constexpr std::size_t letterCount = 0x180; // ASCII and Latin

    QFont m_font;
    Qt::Alignment m_alignment = Qt::AlignLeft;
    qreal m_ascent = 0;
    qreal m_height = 0;
    std::array<float, letterCount> m_advances = {}; // 0 for what is no plain letter
};

/// Draws what of a text fits into a rectangle of one line: its first line, wrapped to the rectangle's width,
/// and nothing beyond the rectangle. Texts in equal rectangles stand on the same baseline, which puts the
/// font in the middle of the rectangle's height. The text may be of any length and have any characters.
void drawOneLine(QPainter &painter, const QRectF &rect, const QString &text,
                 const TextAttributes &attributes);
