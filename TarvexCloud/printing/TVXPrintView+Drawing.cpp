#include "TVXPrintView.h"

#include "PaintTarget.h"

#include <QImage>
#include <QPaintEvent>

using namespace Qt::StringLiterals;

namespace {
// On the page, whose y grows downward, these run clockwise from twelve o'clock as the screen's do.
constexpr std::array<float, WheelGeometry::sliceCount> startAngles = {270, 315, 0, 45, 90, 135, 180, 225};
constexpr std::array<float, WheelGeometry::sliceCount> endAngles = {315, 360, 45, 90, 135, 180, 225, 270};
constexpr qreal ruleWidth = 1;
} // namespace

/// The two pictures; loaded for each call to draw.
struct TVXPrintView::Checkboxes
{
    QImage off = QImage(u":/printing/checkbox_off.gif"_s);
    QImage on = QImage(u":/printing/checkbox_on.gif"_s);
};

const std::array<float, WheelGeometry::sliceCount> &TVXPrintView::anglesStart() const
{
    return startAngles;
}

const std::array<float, WheelGeometry::sliceCount> &TVXPrintView::anglesEnd() const
{
    return endAngles;
}

const std::array<QColor, WheelGeometry::sliceCount> &TVXPrintView::colors() const
{
    return WheelGeometry::colors();
}

void TVXPrintView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    drawRect(painter, event->rect());
}

void TVXPrintView::drawRect(QPainter &painter, const QRectF &rect)
{
    const auto *widget = dynamic_cast<const QWidget *>(painter.device());
    if (!widget || !drawsOnScreen(painter, widget->backingStore()))
        drawItems(painter, layoutOfReport().itemsOnPage(rect, m_countPages));
}

void TVXPrintView::drawItems(QPainter &painter, const ReportItems &items) const
{
    const Checkboxes checkboxes;
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.setPen(QPen(Qt::black, ruleWidth, Qt::SolidLine, Qt::FlatCap));
    for (const ReportItem &item : items)
        drawItem(painter, item, checkboxes);
}

void TVXPrintView::drawItem(QPainter &painter, const ReportItem &item, const Checkboxes &checkboxes) const
{
    switch (item.kind) {
    case ReportItem::Kind::Slice:
    case ReportItem::Kind::Value:
        drawSlice(painter, item);
        break;
    case ReportItem::Kind::CheckboxOff:
        painter.drawImage(item.rect, checkboxes.off);
        break;
    case ReportItem::Kind::CheckboxOn:
        painter.drawImage(item.rect, checkboxes.on);
        break;
    case ReportItem::Kind::Rule:
        painter.drawLine(item.rect.topLeft(), item.rect.topRight());
        break;
    default:
        drawOneLine(painter, item.rect, item.text, attributesOf(item.kind));
    }
}

void TVXPrintView::drawSlice(QPainter &painter, const ReportItem &item) const
{
    const auto index = static_cast<std::size_t>(item.index);
    const QPainterPath sector = WheelGeometry::sector(item.rect.center(), item.rect.width() / 2,
                                                      startAngles[index], endAngles[index]);
    if (item.kind == ReportItem::Kind::Value) {
        painter.fillPath(sector, WheelGeometry::valueColor());
        return;
    }
    painter.fillPath(sector, colors()[index]);
    painter.strokePath(sector, QPen(Qt::white, WheelGeometry::outlineWidth));
}

const TextAttributes &TVXPrintView::attributesOf(ReportItem::Kind kind) const
{
    switch (kind) {
    case ReportItem::Kind::Title:
        return m_attributesTitle;
    case ReportItem::Kind::NameOnLeft:
        return m_attributesDefaultRight;
    case ReportItem::Kind::AreaText:
        return m_attributesAreas;
    default:
        return m_attributesDefault;
    }
}
