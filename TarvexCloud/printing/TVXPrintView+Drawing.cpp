#include "TVXPrintView.h"

#include "PaintTarget.h"

#include <QPaintEvent>

namespace {
constexpr qreal ruleWidth = 1;

// A painter on few dots looks at every sixth dot of the picture or so; made smaller before, all of them
// count.
QImage fitForDots(const QPainter &painter, const QImage &picture)
{
    constexpr QRectF square(0, 0, ReportLayout::checkboxSide, ReportLayout::checkboxSide);
    const QSize dots = painter.deviceTransform().mapRect(square).size().toSize();
    const bool isFiner = picture.width() > dots.width();
    return isFiner ? picture.scaled(dots, Qt::IgnoreAspectRatio, Qt::SmoothTransformation) : picture;
}
} // namespace

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
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform | QPainter::LosslessImageRendering);
    painter.setPen(QPen(Qt::black, ruleWidth, Qt::SolidLine, Qt::FlatCap));
    const Checkboxes checkboxes = {fitForDots(painter, m_checkboxes.off),
                                   fitForDots(painter, m_checkboxes.on)};
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
