#include "TarvexView.h"

#include "PaintTarget.h"
#include "SliceWords.h"
#include "TarvexViewAccessible.h"

#include <QCoreApplication>
#include <QPainter>

namespace {
static_assert(WheelGeometry::sliceCount == TVXSets::areaCount);

// The focus line and the halo it lies in, far enough from the slice's rim to show its colour on both sides.
constexpr qreal ringWidth = 2.5;
constexpr qreal ringHalo = 6;
constexpr qreal ringInset = 7;
} // namespace

TarvexView::TarvexView(QWidget *parent) : QWidget(parent)
{
    TarvexViewAccessible::install();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setMouseTracking(true);
    m_focusAnnouncement.setSingleShot(true);
    connect(&m_focusAnnouncement, &QTimer::timeout, this, &TarvexView::announceFocus);
    areasMayHaveChanged();
}

void TarvexView::setMainData(const TVXProjectPtr &project)
{
    m_mainData = project;
    areasMayHaveChanged();
}

QSize TarvexView::sizeHint() const
{
    return {WheelGeometry::viewSide, WheelGeometry::viewSide};
}

void TarvexView::display()
{
    repaint();
    // The toolkit has what was just shown painted later, which is once more.
    QCoreApplication::removePostedEvents(this, QEvent::UpdateLater);
    areasMayHaveChanged();
}

int TarvexView::areaCount() const
{
    if (!m_mainData || !m_mainData->areas())
        return 0;
    return static_cast<int>(std::min<std::size_t>(m_mainData->areas()->size(), WheelGeometry::sliceCount));
}

TVXAreaPtr TarvexView::areaAt(int index) const
{
    if (index < 0 || index >= areaCount())
        return {};
    return (*m_mainData->areas())[static_cast<std::size_t>(index)];
}

QString TarvexView::wordsOfPiece(int index) const
{
    const TVXAreaPtr area = areaAt(index);
    return area ? sliceWords(area->name(), area->valueOfArea(),
                             m_percentTexts[static_cast<std::size_t>(index)])
                : QString();
}

std::shared_ptr<WheelPiece> TarvexView::pieceOfWheel(int index) const
{
    const auto at = static_cast<std::size_t>(index);
    if (!m_piecesOfWheel || at >= m_piecesOfWheel->size())
        return {};
    return (*m_piecesOfWheel)[at];
}

QPointF TarvexView::centre() const
{
    return WheelGeometry::centre(size());
}

void TarvexView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!drawsOnScreen(painter, backingStore()))
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0, height());
    painter.scale(1, -1);
    for (int index = 0; index < WheelGeometry::sliceCount; ++index) {
        drawPiece(painter, index);
        drawValue(painter, index);
    }
    if (m_focusRingShown && hasFocus() && isActiveWindow() && areaCount() > 0)
        drawFocusRing(painter);
}

void TarvexView::drawPiece(QPainter &painter, int index)
{
    const std::shared_ptr<WheelPiece> piece = pieceOfWheel(index);
    if (!piece)
        return;
    piece->append(WheelGeometry::sliceOutline(centre(), index));
    for (const QPainterPath &outline : piece->outlinesToPaint())
        painter.fillPath(outline, colors()[static_cast<std::size_t>(index)]);
    for (const QPainterPath &outline : piece->outlinesToPaint())
        painter.strokePath(outline, QPen(Qt::white, WheelGeometry::outlineWidth));
}

void TarvexView::drawValue(QPainter &painter, int index) const
{
    const TVXAreaPtr area = areaAt(index);
    if (!area)
        return;
    const qreal reach = WheelGeometry::reach(centre(), size());
    painter.fillPath(WheelGeometry::valueSector(centre(), index, area->valueOfArea(), reach),
                     WheelGeometry::valueColor());
}

// Two lines, since no single colour stands out on all eight slices, their pale sectors and both palettes:
// text and window colour are each other's contrast, so one of them always does.
void TarvexView::drawFocusRing(QPainter &painter) const
{
    const QPainterPath ring = WheelGeometry::insetOutline(centre(), currentPiece(), ringInset);
    QPen pen(palette().color(QPalette::Window), ringHalo, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.strokePath(ring, pen);
    pen.setColor(palette().color(QPalette::WindowText));
    pen.setWidthF(ringWidth);
    painter.strokePath(ring, pen);
}
