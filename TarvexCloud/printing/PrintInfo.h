#pragma once

#include "ReportPages.h"

#include <QPageLayout>

/// What a report is printed on, and how. Lengths are points from the paper's top left corner.
struct PrintInfo
{
    /// How a page that is larger than the paper is brought onto it. The report's pages are as large as the
    /// printable area, so that they fit as they are.
    enum class Pagination { Automatic, Fit, Clip };

    QRectF imageablePageBounds; ///< the printable area of a page
    QSizeF paperSize;
    bool printAllPages = false; ///< a choice of pages made for an earlier report does not count
    Pagination horizontalPagination = Pagination::Automatic;
    Pagination verticalPagination = Pagination::Automatic;

    void setPageLayout(const QPageLayout &layout)
    {
        imageablePageBounds = layout.paintRect(QPageLayout::Point);
        paperSize = layout.fullRect(QPageLayout::Point).size();
    }
};

/// Pages from `location` on, `length` of them.
struct PageRange
{
    qint64 location = 1;
    qint64 length = 0;
};
