#include "PrintOperation.h"

#include <QPagedPaintDevice>
#include <QPrinter>

namespace {
constexpr qreal pointsPerInch = 72;

bool isChosen(const QPagedPaintDevice &device, qint64 page)
{
    const auto *printer = dynamic_cast<const QPrinter *>(&device);
    const QPageRanges ranges = device.pageRanges();
    if ((printer && printer->printRange() != QPrinter::PageRange) || ranges.isEmpty())
        return true;
    return page <= std::numeric_limits<int>::max() && ranges.contains(static_cast<int>(page));
}
} // namespace

PrintOperation::PrintOperation(std::unique_ptr<TVXPrintView> view, const PrintInfo &printInfo)
    : m_printInfo(printInfo), m_view(std::move(view))
{
    m_view->setPrintInfo(&m_printInfo);
}

PageRange PrintOperation::layOutFor(const QPageLayout &pageLayout)
{
    m_printInfo.pageLayout = pageLayout;
    PageRange range;
    m_view->knowsPageRange(&range);
    return range;
}

void PrintOperation::drawPage(QPainter &painter, qint64 page)
{
    const QRectF rect = m_view->rectForPage(page);
    painter.save();
    painter.setClipRect(QRectF(QPointF(), rect.size()), Qt::IntersectClip);
    painter.translate(-rect.topLeft());
    m_view->drawRect(painter, rect);
    painter.restore();
}

std::optional<PrintFailure> PrintOperation::runOn(QPagedPaintDevice &device)
{
    const PageRange range = layOutFor(device.pageLayout());
    QPainter painter;
    if (!painter.begin(&device))
        return PrintFailure();
    painter.scale(device.logicalDpiX() / pointsPerInch, device.logicalDpiY() / pointsPerInch);
    bool onFreshPage = true;
    for (qint64 page = range.location; page < range.location + range.length; ++page) {
        if (!isChosen(device, page))
            continue;
        if (!onFreshPage && !device.newPage())
            return PrintFailure{page, range.length};
        drawPage(painter, page);
        onFreshPage = false;
    }
    if (!painter.end())
        return PrintFailure{range.length, range.length};
    return std::nullopt;
}
