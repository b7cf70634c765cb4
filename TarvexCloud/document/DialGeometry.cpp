#include "DialGeometry.h"

#include <cmath>
#include <QtMath>

namespace {

constexpr qreal gap = 7;
constexpr int margin = 16;
constexpr int averageLeft = 24;
constexpr int averageTop = 14;
constexpr int gapToAverage = 12;

qreal percentRadius(const DialGeometry::TextSizes &text)
{
    return DialGeometry::wheelRadius + gap + text.percent.height() / 2;
}

// The middle of percent label k, from the wheel's centre and with y growing upward.
QPointF percentMiddle(const DialGeometry::TextSizes &text, int index)
{
    return WheelGeometry::polar({}, percentRadius(text), WheelGeometry::middleAngle(index));
}

// Half the width that a percent label takes up once it is turned along the rim.
qreal turnedHalfWidth(const DialGeometry::TextSizes &text, int index)
{
    const qreal turn = qDegreesToRadians(DialGeometry::percentRotations[static_cast<std::size_t>(index)]);
    return (text.percent.width() * std::abs(std::cos(turn)) +
            text.percent.height() * std::abs(std::sin(turn))) /
           2;
}

int averageRight(const DialGeometry::TextSizes &text)
{
    return averageLeft + std::max(text.average.width(), text.captionWidth);
}

// How far from the wheel's centre a name begins, and how high its middle lies.
QPointF nameAnchor(const DialGeometry::TextSizes &text, int index)
{
    const QPointF percent = percentMiddle(text, index);
    const bool nearPole = index % 4 == 0 || index % 4 == 3;
    if (nearPole) {
        // Above the percent that leans most, whatever the size of the text.
        const qreal rim = DialGeometry::wheelRadius + text.percent.height() / 2;
        const qreal aboveLeaning = std::abs(percent.y()) + text.percent.height() * 0.6;
        const qreal height = std::max(rim, aboveLeaning) + text.nameHeight / 2.0;
        return {std::abs(percent.x()) + gap + 4, std::copysign(height, percent.y())};
    }
    const qreal beyond = std::max(turnedHalfWidth(text, index), turnedHalfWidth(text, 7 - index));
    return {std::abs(percent.x()) + beyond + gap, percent.y() * 1.1};
}

} // namespace

DialGeometry::DialGeometry(QSize area, const TextSizes &text)
    : wheel((area.width() - WheelGeometry::viewSide) / 2, (area.height() - WheelGeometry::viewSide) / 2,
            WheelGeometry::viewSide, WheelGeometry::viewSide),
      average(averageLeft, averageTop, text.average.width(), text.average.height()),
      caption(averageLeft, average.bottom() + 1, text.captionWidth, text.captionHeight)
{
    const QPointF centre = wheel.toRectF().center();

    for (int index = 0; index < areaCount; ++index) {
        const auto k = static_cast<std::size_t>(index);
        percentCentres[k] = WheelGeometry::flipped(centre, area.height()) + percentMiddle(text, index);

        const QPointF anchor = nameAnchor(text, index);
        const int y = static_cast<int>(std::lround(centre.y() - anchor.y() - text.nameHeight / 2.0));
        const int reach = static_cast<int>(std::lround(anchor.x()));
        const int width = std::max(0, static_cast<int>(centre.x()) - reach - margin);
        const int x = isOnRightHalf(index) ? static_cast<int>(centre.x()) + reach : margin;
        names[k] = QRect(x, y, width, text.nameHeight);
        if (names[k].intersects(average | caption))
            names[k].setLeft(averageRight(text) + gapToAverage);
    }
}

QSize DialGeometry::minimumArea(const TextSizes &text)
{
    const qreal reach = std::max(nameAnchor(text, /*index=*/1).x(), nameAnchor(text, /*index=*/2).x()) +
                        text.nameWidthAtSide + margin;
    const qreal reachBesideAverage =
        nameAnchor(text, /*index=*/7).x() + text.nameWidthBesideAverage + gapToAverage + averageRight(text);
    const qreal rise = nameAnchor(text, /*index=*/0).y() + text.nameHeight / 2.0 + gap;
    return {static_cast<int>(std::ceil(2 * std::max(reach, reachBesideAverage))),
            static_cast<int>(std::ceil(2 * rise))};
}
