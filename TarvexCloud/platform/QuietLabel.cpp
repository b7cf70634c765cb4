#include "QuietLabel.h"

#include <QPainter>
#include <QStyle>

QuietLabel::QuietLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void QuietLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(quietShadeOf(palette().color(QPalette::WindowText)));
    const int wrap = wordWrap() ? Qt::TextWordWrap : Qt::TextSingleLine;
    const int m = margin();
    // The layout says where lines begin, the text in which direction they run.
    const Qt::Alignment sides = QStyle::visualAlignment(layoutDirection(), alignment()) | Qt::AlignAbsolute;
    painter.setLayoutDirection(text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(contentsRect().adjusted(m, m, -m, -m), static_cast<int>(sides) | wrap,
                     wordWrap() ? text() : fontMetrics().elidedText(text(), Qt::ElideRight, width() - 2 * m));
}

QColor quietShadeOf(QColor text)
{
    constexpr float strength = 0.66F;
    text.setAlphaF(strength);
    return text;
}
