#include "ReportPreview.h"

#include "PrintOperation.h"

#include <algorithm>
#include <QKeyEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QScrollBar>

namespace {
constexpr qreal gap = 18;
constexpr qreal leastZoom = 0.2;
constexpr qreal largestZoom = 5;
constexpr qreal edgeWidth = 1;
constexpr int pixelsPerStep = 24;

int bounded(qreal pixels)
{
    return static_cast<int>(std::clamp<qreal>(pixels, 0, std::numeric_limits<int>::max()));
}
} // namespace

ReportPreview::ReportPreview(const std::shared_ptr<PrintOperation> &operation, QWidget *parent)
    : QAbstractScrollArea(parent), m_operation(operation)
{
    setAccessibleName(tr("Pages of the report"));
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setAutoFillBackground(true);
    // Always there: a bar that comes and goes would change the width that a page is fitted to.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setPageLayout(operation->printInfo().pageLayout);
}

void ReportPreview::setPageLayout(const QPageLayout &layout)
{
    m_pageLayout = layout;
    m_countPages = m_operation->layOutFor(layout).length;
    setFit(m_fit);
    verticalScrollBar()->setValue(0);
    viewport()->update();
    Q_EMIT currentPageChanged();
}

QSizeF ReportPreview::pageSize() const
{
    return m_operation->printInfo().paperSize() * m_zoom;
}

void ReportPreview::setFit(Fit fit)
{
    m_fit = fit;
    const QSizeF paper = m_operation->printInfo().paperSize();
    const QSizeF room = QSizeF(viewport()->size()) - QSizeF(2 * gap, 2 * gap);
    if (fit == Fit::None || paper.isEmpty()) {
        updateScrollBars();
        return;
    }
    const qreal byWidth = room.width() / paper.width();
    setZoom(fit == Fit::Width ? byWidth : std::min(byWidth, room.height() / paper.height()));
}

void ReportPreview::zoomBy(qreal factor)
{
    m_fit = Fit::None;
    setZoom(m_zoom * factor);
}

void ReportPreview::setZoom(qreal zoom)
{
    // The middle of the view stays where it is, unless the view is at the top.
    const int scrolled = verticalScrollBar()->value();
    const qreal anchor = scrolled == 0 ? 0 : viewport()->height() / 2.0;
    const qreal place = (scrolled + anchor) / (pageSize().height() + gap);
    m_zoom = std::clamp(zoom, leastZoom, largestZoom);
    updateScrollBars();
    verticalScrollBar()->setValue(bounded(place * (pageSize().height() + gap) - anchor));
    viewport()->update();
    Q_EMIT currentPageChanged();
}

void ReportPreview::updateScrollBars()
{
    const QSizeF page = pageSize();
    const qreal height = static_cast<qreal>(m_countPages) * (page.height() + gap) + gap;
    verticalScrollBar()->setRange(0, bounded(height - viewport()->height()));
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(pixelsPerStep);
    horizontalScrollBar()->setRange(0, bounded(page.width() + 2 * gap - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setSingleStep(pixelsPerStep);
}

qint64 ReportPreview::pageAt(qreal viewportY) const
{
    const qreal step = pageSize().height() + gap;
    const auto page = static_cast<qint64>((viewportY + verticalScrollBar()->value()) / step) + 1;
    return std::clamp<qint64>(page, 1, m_countPages);
}

qint64 ReportPreview::currentPage() const
{
    return pageAt(viewport()->height() / 2.0);
}

QRectF ReportPreview::rectOfPage(qint64 page) const
{
    const QSizeF size = pageSize();
    const qreal x = std::max(gap, (viewport()->width() - size.width()) / 2) - horizontalScrollBar()->value();
    const qreal y = static_cast<qreal>(page - 1) * (size.height() + gap) + gap - verticalScrollBar()->value();
    return {QPointF(x, y), size};
}

void ReportPreview::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const qint64 last = pageAt(event->rect().bottom());
    for (qint64 page = pageAt(event->rect().top()); page <= last; ++page)
        drawPage(painter, page, event->rect());
}

// The report never draws on the screen: it is drawn into a picture of what is exposed, and that is shown.
void ReportPreview::drawPage(QPainter &painter, qint64 page, const QRect &exposed)
{
    const QRectF sheet = rectOfPage(page);
    const QRect seen = sheet.toAlignedRect() & exposed;
    if (seen.isEmpty())
        return;
    const qreal ratio = devicePixelRatioF();
    QImage picture((QSizeF(seen.size()) * ratio).toSize(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    {
        QPainter onPicture(&picture);
        onPicture.scale(ratio * m_zoom, ratio * m_zoom);
        onPicture.translate((sheet.topLeft() - seen.topLeft()) / m_zoom);
        onPicture.translate(m_operation->printInfo().imageablePageBounds().topLeft());
        m_operation->drawPage(onPicture, page);
    }
    painter.drawImage(QRectF(seen), picture);
    painter.setPen(QPen(palette().color(QPalette::Dark), edgeWidth));
    painter.drawRect(sheet.toAlignedRect().adjusted(-1, -1, 0, 0));
}

void ReportPreview::resizeEvent(QResizeEvent *)
{
    setFit(m_fit);
}

void ReportPreview::scrollContentsBy(int dx, int dy)
{
    viewport()->scroll(dx, dy);
    Q_EMIT currentPageChanged();
}

void ReportPreview::keyPressEvent(QKeyEvent *event)
{
    QScrollBar *bar = verticalScrollBar();
    if (event->key() == Qt::Key_Home)
        bar->setValue(bar->minimum());
    else if (event->key() == Qt::Key_End)
        bar->setValue(bar->maximum());
    else
        QAbstractScrollArea::keyPressEvent(event);
}
