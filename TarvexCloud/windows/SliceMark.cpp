#include "SliceMark.h"

#include "WheelGeometry.h"

#include <QPainter>

SliceMark::SliceMark(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SliceMark::setIndex(std::optional<std::size_t> index)
{
    m_index = index;
    update();
}

QSize SliceMark::sizeHint() const
{
    const int side = fontMetrics().height() * 3 / 2;
    return {side, side};
}

void SliceMark::paintEvent(QPaintEvent *)
{
    if (!m_index || *m_index >= WheelGeometry::sliceCount)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(WheelGeometry::fittedInto(rect()), /*combine=*/true);
    // Pale slices need an edge on a pale window.
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(0.55F);
    QPen pen(edge, 1);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.drawEllipse(QPointF(), WheelGeometry::sliceRadius, WheelGeometry::sliceRadius);
    painter.setBrush(WheelGeometry::colors().at(*m_index));
    painter.drawPath(WheelGeometry::sliceOutline(QPointF(), static_cast<int>(*m_index)));
}
