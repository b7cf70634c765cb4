#pragma once

#include <QPageLayout>

/// What a report is printed on, and how.
struct PrintInfo
{
    /// How a page that is larger than the paper is brought onto it. The report's pages are as large as the
    /// printable area, so that they fit as they are.
    enum class Pagination { Automatic, Fit, Clip };

    QPageLayout pageLayout;
    bool printAllPages = false; ///< the printer is asked for all pages until the user chooses some
    Pagination horizontalPagination = Pagination::Automatic;
    Pagination verticalPagination = Pagination::Automatic;

    /// The printable area of a page, in points from the paper's top left corner.
    QRectF imageablePageBounds() const { return pageLayout.paintRect(QPageLayout::Point); }
    QSizeF paperSize() const { return pageLayout.fullRect(QPageLayout::Point).size(); }
};

/// Pages from `location` on, `length` of them.
struct PageRange
{
    qint64 location = 1;
    qint64 length = 0;
};
