#include "QuietLabel.h"

#include <QPainter>

namespace {
// On black and white alike this keeps a contrast of more than 4.5 to 1.
constexpr float strength = 0.66F;
} // namespace

QuietLabel::QuietLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void QuietLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor color = palette().color(QPalette::WindowText);
    color.setAlphaF(strength);
    painter.setPen(color);
    const int wrap = wordWrap() ? Qt::TextWordWrap : Qt::TextSingleLine;
    const int m = margin();
    painter.drawText(contentsRect().adjusted(m, m, -m, -m), static_cast<int>(alignment()) | wrap, text());
}
