#include "WheelGeometry.h"

#include <algorithm>
#include <cmath>
#include <QtMath>

namespace WheelGeometry {
namespace {
constexpr qreal halfSliceAngle = 22.5;
constexpr quint32 radiusPerValue = 21;

std::size_t at(int index)
{
    Q_ASSERT(index >= 0 && index < sliceCount);
    return static_cast<std::size_t>(index);
}

// The toolkit counts an arc's angles from x towards minus y, hence the signs.
void addArc(QPainterPath &path, const QPointF &centre, qreal radius, qreal startAngle, qreal endAngle)
{
    path.arcTo(squareAround(centre, radius), -startAngle, startAngle - endAngle);
}
} // namespace

QRectF squareAround(const QPointF &centre, qreal halfSide)
{
    return {centre.x() - halfSide, centre.y() - halfSide, 2 * halfSide, 2 * halfSide};
}

qreal middleAngle(int index)
{
    return static_cast<qreal>(anglesStart[at(index)]) + halfSliceAngle;
}

QPointF polar(const QPointF &centre, qreal radius, qreal angle)
{
    const qreal radians = qDegreesToRadians(angle);
    return centre + QPointF(radius * std::cos(radians), radius * std::sin(radians));
}

const std::array<QColor, sliceCount> &colors()
{
    static const std::array<QColor, sliceCount> table = {
        QColor::fromRgbF(0.713F, 0.6F, 0.788F),   QColor::fromRgbF(0.96F, 0.749F, 0.223F),
        QColor::fromRgbF(0.585F, 0.785F, 0.282F), QColor::fromRgbF(0.312F, 0.687F, 0.89F),
        QColor::fromRgbF(0.842F, 0.367F, 0.529F), QColor::fromRgbF(0.378F, 0.835F, 0.725F),
        QColor::fromRgbF(0.89F, 0.89F, 0.5F),     QColor::fromRgbF(0.914F, 0.957F, 0.222F)};
    return table;
}

QColor valueColor()
{
    return QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.7F);
}

QPointF centre(const QSizeF &viewSize)
{
    return {std::trunc(viewSize.width() / 2), std::trunc(viewSize.height() / 2)};
}

QPointF flipped(const QPointF &point, qreal viewHeight)
{
    return {point.x(), viewHeight - point.y()};
}

QTransform fittedInto(const QRectF &rect)
{
    const qreal scale = (std::min(rect.width(), rect.height()) / 2 - 1) / sliceRadius;
    return QTransform::fromTranslate(rect.center().x(), rect.center().y()).scale(scale, -scale);
}

qreal reach(const QPointF &centre, const QSizeF &viewSize)
{
    constexpr qreal softEdge = 1; // the arc's own antialiased edge stays out of sight, too
    return softEdge + std::hypot(std::max(centre.x(), viewSize.width() - centre.x()),
                                 std::max(centre.y(), viewSize.height() - centre.y()));
}

qint32 valueRadius(qint32 value)
{
    return static_cast<qint32>(radiusPerValue * static_cast<quint32>(value) + radiusPerValue);
}

QPainterPath sector(const QPointF &centre, qreal radius, qreal startAngle, qreal endAngle)
{
    QPainterPath path(centre);
    path.setFillRule(Qt::WindingFill);
    addArc(path, centre, radius, startAngle, endAngle);
    path.closeSubpath();
    return path;
}

QPainterPath sliceOutline(const QPointF &centre, int index)
{
    return sector(centre, sliceRadius, anglesStart[at(index)], anglesEnd[at(index)]);
}

QPainterPath valueSector(const QPointF &centre, int index, qint32 value, qreal reach)
{
    const qreal radius = std::clamp<qreal>(valueRadius(value), -reach, reach);
    return sector(centre, radius, anglesStart[at(index)], anglesEnd[at(index)]);
}

QPainterPath insetOutline(const QPointF &centre, int index, qreal inset)
{
    const qreal radius = sliceRadius - inset;
    const qreal turn = qRadiansToDegrees(std::asin(inset / radius)); // where a moved side meets the moved arc
    const qreal start = anglesStart[at(index)] + turn;
    const qreal end = anglesEnd[at(index)] - turn;
    QPainterPath path(polar(centre, inset / std::sin(qDegreesToRadians(halfSliceAngle)), middleAngle(index)));
    addArc(path, centre, radius, start, end);
    path.closeSubpath();
    return path;
}

QRectF innerSquare(const QPointF &centre, int index)
{
    // The slice's inscribed circle touches both sides and the arc; the square keeps clear of where it does.
    constexpr qreal clearance = 0.9;
    const qreal distance = sliceRadius / (1 + std::sin(qDegreesToRadians(halfSliceAngle)));
    const qreal circle = sliceRadius - distance;
    return squareAround(polar(centre, distance, middleAngle(index)), clearance * circle / M_SQRT2);
}
} // namespace WheelGeometry
