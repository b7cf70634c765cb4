#pragma once

#include "WheelGeometry.h"

#include <array>
#include <QPointF>
#include <QRect>
#include <QSizeF>

/// Where the wheel, the eight names and the eight percents stand in the window, for a given size of the area
/// and of the text. Plain arithmetic in widget coordinates (y down) unless said otherwise.
struct DialGeometry
{
    static constexpr int areaCount = WheelGeometry::sliceCount;
    static constexpr qreal wheelRadius = WheelGeometry::sliceRadius;

    struct TextSizes
    {
        int nameHeight = 18;
        /// The least room for the names at the wheel's sides, and for the one that has the average beside it.
        int nameWidthAtSide = 150;
        int nameWidthBesideAverage = 70;
        QSizeF percent = {54, 17};
        QSize average = {110, 44};
        int captionHeight = 18;
        int captionWidth = 160;
    };

    /// The turn of percent label 1 to 8 in degrees, counter-clockwise. Tangents of the rim in the main; 3 to
    /// 6 are tuned by eye and meant to differ from their mirror images.
    static constexpr std::array<qreal, areaCount> percentRotations = {-22.5, -67.5, -115.0, -160.0,
                                                                      150.5, 118.5, 67.5,   22.5};

    DialGeometry(QSize area, const TextSizes &text);

    QRect wheel;
    std::array<QRect, areaCount> names;
    /// Centres of the turned percent labels, y growing upward from the bottom of the area.
    std::array<QPointF, areaCount> percentCentres;
    QRect average;
    QRect caption;

    /// Whether area k's name stands on the right half of the dial and is aligned to the left.
    static bool isOnRightHalf(int index) { return index < areaCount / 2; }
    /// The least area in which nothing overlaps and names have the room they need.
    static QSize minimumArea(const TextSizes &text);
};
