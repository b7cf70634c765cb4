#pragma once

#include <QFont>
#include <QPainter>

/// How a text is set.
struct TextAttributes
{
    QFont font;
    Qt::Alignment alignment = Qt::AlignLeft; ///< AlignLeft or AlignRight, whatever the text's direction
};

/// Draws what of a text fits into a rectangle of one line: its first line, wrapped to the rectangle's width,
/// and nothing beyond the rectangle. The text may be of any length and have any characters.
void drawOneLine(QPainter &painter, const QRectF &rect, const QString &text,
                 const TextAttributes &attributes);
