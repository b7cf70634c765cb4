#pragma once

#include <QRectF>

/// Heights of one line of text in the report's three sizes, in points.
struct ReportLineHeights
{
    float title = 0;
    float area = 0;
    float goal = 0;
};

/// How the report is cut into pages: bands of equal height, counted from 1. All lengths are points, and the
/// report's height is computed in single precision, rounding included, since it decides the number of pages.
namespace ReportPages {
/// Where the list of areas begins on the first page, below title and wheel.
inline constexpr qint32 topOfAreaList = 320;

/// The printable height in whole points: how far one page's band lies below the one before.
qint32 pageHeight(const QRectF &pageRect);

/// The height that the report is counted with. It has an empty line after the last area, too, which is not
/// drawn, and a line for every goal, also for one that belongs to no area.
float documentHeight(const ReportLineHeights &lineHeights, qint64 countGoals);

/// At least one; exactly one where a page is less than a whole point high.
qint64 countPages(float documentHeight, qint32 pageHeight);

/// The part of the report that a page shows. It is as high as the printable area while pages advance by whole
/// points, so the last fraction of a point is shown again on the next page.
QRectF rectForPage(const QRectF &pageRect, qint64 page);
} // namespace ReportPages
