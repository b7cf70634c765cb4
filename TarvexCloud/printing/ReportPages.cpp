#include "ReportPages.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ReportPages {
constexpr float areaLines = 8;
constexpr float emptyLines = 8;

qint32 pageHeight(const QRectF &pageRect)
{
    const bool fits = std::abs(pageRect.height()) < std::numeric_limits<qint32>::max(); // false for no number
    return fits ? static_cast<qint32>(pageRect.height()) : 0;
}

float documentHeight(const ReportLineHeights &lineHeights, qint64 countGoals)
{
    const float areas = lineHeights.area * areaLines + static_cast<float>(topOfAreaList);
    const float goals = static_cast<float>(countGoals) * lineHeights.goal;
    return areas + goals + emptyLines * lineHeights.goal;
}

qint64 countPages(float documentHeight, qint32 pageHeight)
{
    if (pageHeight <= 0)
        return 1;
    const auto pages = static_cast<qint64>(documentHeight / static_cast<float>(pageHeight));
    const bool isCutShort = documentHeight > static_cast<float>(pageHeight * pages);
    return std::max<qint64>(pages + (isCutShort ? 1 : 0), 1);
}

QRectF rectForPage(const QRectF &pageRect, qint64 page)
{
    const auto top = static_cast<qreal>(pageHeight(pageRect) * (page - 1));
    return {pageRect.x(), top, pageRect.width(), pageRect.height()};
}
} // namespace ReportPages
