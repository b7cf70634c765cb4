#pragma once

#include <array>
#include <QFont>
#include <QPainter>

/// How a text is set, with the figures of the font that a quick look at a text needs.
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

    /// Whether the text is surely one line of that width, of letters that stay within the font's height. No
    /// says nothing.
    bool isPlainLine(const QString &text, qreal width) const;

private:
    static constexpr std::size_t letterCount = 0x180; // ASCII and Latin

    QFont m_font;
    Qt::Alignment m_alignment = Qt::AlignLeft;
    qreal m_ascent = 0;
    qreal m_height = 0;
    std::array<float, letterCount> m_advances = {}; // 0 for what is no plain letter
};

/// Draws what of a text fits into a rectangle of one line: its first line, wrapped to the rectangle's width
/// and halfway down its height, and nothing beyond the rectangle. The text may be of any length and have any
/// characters.
void drawOneLine(QPainter &painter, const QRectF &rect, const QString &text,
                 const TextAttributes &attributes);
