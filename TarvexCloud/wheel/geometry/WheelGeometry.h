#pragma once

#include <array>
#include <QColor>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QTransform>

/// The wheel as numbers: tables by area index, outlines and sizes, in points.
///
/// Angles are degrees from the positive x axis towards the positive y axis of the caller's coordinates. The
/// screen wheel's coordinates have y growing upward from the view's bottom edge, so there they run
/// counter-clockwise; on a page whose y grows downward the same functions run clockwise.
namespace WheelGeometry {
inline constexpr int sliceCount = 8;
inline constexpr qreal sliceRadius = 210.0;
/// Side of the square view that holds the wheel with a little air round it.
inline constexpr int viewSide = 430;
/// Width of the white line round every slice.
inline constexpr qreal outlineWidth = 1.5;

/// Where each slice's arc starts and ends on the screen wheel: slice 0 runs from twelve o'clock to half past
/// one, the others follow clockwise.
inline constexpr std::array<float, sliceCount> anglesStart = {45, 0, 315, 270, 225, 180, 135, 90};
inline constexpr std::array<float, sliceCount> anglesEnd = {90, 45, 360, 315, 270, 225, 180, 135};

/// Of a negative half side it has a negative size.
QRectF squareAround(const QPointF &centre, qreal halfSide);

/// The direction in which a slice's middle lies.
qreal middleAngle(int index);
/// The point that far from another in that direction.
QPointF polar(const QPointF &centre, qreal radius, qreal angle);

/// The slices' fill colours, the same on screen and paper.
const std::array<QColor, sliceCount> &colors();
/// What is laid over a slice up to its value: white that lets the slice's colour through.
QColor valueColor();

/// The wheel's centre in a view of that size: half of each side, cut to a whole number.
QPointF centre(const QSizeF &viewSize);
/// Between a widget's own coordinates (y down) and the wheel's (y up); its own inverse.
QPointF flipped(const QPointF &point, qreal viewHeight);
/// From a wheel whose centre is (0, 0) into a small picture of it, which fills the rectangle, y down, up to a
/// unit from its nearer sides.
QTransform fittedInto(const QRectF &rect);
/// No point of the view lies farther from the centre than this.
qreal reach(const QPointF &centre, const QSizeF &viewSize);

/// Radius of the pale sector: 21 for the value 0, a full slice for 9. Nothing limits it: it wraps like any
/// 32-bit integer and is negative for most negative values.
qint32 valueRadius(qint32 value);

/// A closed sector, wound so that copies of it on top of one another stay filled. A negative radius gives the
/// sector on the opposite side, radius 0 an empty one.
QPainterPath sector(const QPointF &centre, qreal radius, qreal startAngle, qreal endAngle);
/// The whole slice with that index; 0 to 7, like every index below.
QPainterPath sliceOutline(const QPointF &centre, int index);
/// The part of the slice that its area's value covers. A radius beyond the reach is cut to it, which leaves
/// the same picture and keeps absurd values out of the painter's arithmetic.
QPainterPath valueSector(const QPointF &centre, int index, qint32 value, qreal reach);
/// The slice's outline moved inward by that distance on all sides, for a line that stays inside the slice.
QPainterPath insetOutline(const QPointF &centre, int index, qreal inset);
/// The square in the roomiest part of the slice: what stands for the slice where only a rectangle will do.
QRectF innerSquare(const QPointF &centre, int index);
} // namespace WheelGeometry
