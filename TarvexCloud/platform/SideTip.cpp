#include "SideTip.h"

#include <algorithm>
#include <QStyleOptionFrame>
#include <QStylePainter>
#include <QToolTip>

constexpr int gap = 6;

SideTip::SideTip(QWidget *window) : QLabel(window)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setIndent(0);
    setForegroundRole(QPalette::ToolTipText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SideTip::showBeside(const QRect &part, const QString &words)
{
    setPalette(QToolTip::palette());
    setFont(QToolTip::font());
    setMargin(2 + style()->pixelMetric(QStyle::PM_ToolTipLabelFrameWidth, nullptr, this));
    setText(words);
    const QRect room = roomBeside(part);
    const int width = std::min(room.width(), fontMetrics().horizontalAdvance(words) + 2 * margin());
    QRect place(QPoint(), QSize(width, heightForWidth(width)));
    place.moveCenter(part.center());
    place.moveTop(std::clamp(place.top(), room.top(), std::max(room.top(), room.bottom() - place.height())));
    if (room.left() > part.right())
        place.moveLeft(room.left());
    else
        place.moveRight(room.right());
    setGeometry(place);
    raise();
    show();
}

QRect SideTip::roomBeside(const QRect &part) const
{
    const QRect window = parentWidget()->rect().marginsRemoved({gap, gap, gap, gap});
    QRect left = window;
    left.setRight(part.left() - gap);
    QRect right = window;
    right.setLeft(part.right() + gap);
    const bool isLeft = part.center().x() < window.center().x();
    const int longestWord = fontMetrics().boundingRect({0, 0, 1, 1}, Qt::TextWordWrap, text()).width();
    const bool fits = (isLeft ? left : right).width() >= longestWord + 2 * margin();
    return isLeft == fits ? left : right;
}

void SideTip::paintEvent(QPaintEvent *event)
{
    {
        QStylePainter painter(this);
        QStyleOptionFrame frame;
        frame.initFrom(this);
        painter.drawPrimitive(QStyle::PE_PanelTipLabel, frame);
    }
    QLabel::paintEvent(event);
}
