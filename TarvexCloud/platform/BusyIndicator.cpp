#include "BusyIndicator.h"

#include <QPainter>
#include <QTimerEvent>

constexpr int spokes = 12;
constexpr int millisecondsPerStep = 80;

BusyIndicator::BusyIndicator(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void BusyIndicator::startAnimation()
{
    m_timer.start(millisecondsPerStep, this);
    update();
}

void BusyIndicator::stopAnimation()
{
    m_timer.stop();
    update();
}

QSize BusyIndicator::sizeHint() const
{
    const int side = fontMetrics().height() + 4;
    return {side, side};
}

void BusyIndicator::paintEvent(QPaintEvent *)
{
    if (!isAnimating())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect().toRectF().center());
    const qreal radius = qMin(width(), height()) / 2.0 - 1;
    QColor color = palette().color(QPalette::WindowText);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int age = (m_step - spoke + spokes) % spokes;
        color.setAlphaF(1.0F - 0.9F * static_cast<float>(age) / spokes);
        painter.setPen(QPen(color, radius * 0.22, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(spoke * 360.0 / spokes);
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius * 0.88));
        painter.restore();
    }
}

void BusyIndicator::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return QWidget::timerEvent(event);
    m_step = (m_step + 1) % spokes;
    update();
}

BusyScope::BusyScope(BusyIndicator *indicator) : m_indicator(indicator)
{
    if (m_indicator)
        m_indicator->startAnimation();
}

BusyScope::~BusyScope()
{
    if (m_indicator)
        m_indicator->stopAnimation();
}
