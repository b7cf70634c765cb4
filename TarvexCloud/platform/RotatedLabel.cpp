#include "RotatedLabel.h"

#include "ElidedLabel.h"

#include <QPainter>
#include <QTransform>

RotatedLabel::RotatedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void RotatedLabel::setFrameRotation(qreal degrees)
{
    m_degrees = degrees;
    place();
}

void RotatedLabel::setFrameCentredAt(QPointF centre, QSizeF size, int parentHeight)
{
    const QPointF toCentre = QTransform().rotate(m_degrees).map(QPointF(size.width() / 2, size.height() / 2));
    m_frame = QRectF(centre - toCentre, size);
    m_parentHeight = parentHeight;
    place();
}

void RotatedLabel::place()
{
    // Screen coordinates: y down, so the same turn has the opposite sign and the frame lies above its origin.
    const QPointF origin(m_frame.left(), m_parentHeight - m_frame.top());
    const QTransform turn = QTransform::fromTranslate(origin.x(), origin.y()).rotate(-m_degrees);
    setGeometry(
        turn.mapRect(QRectF(0, -m_frame.height(), m_frame.width(), m_frame.height())).toAlignedRect());
    update();
}

void RotatedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.setPen(palette().color(foregroundRole()));
    painter.translate(QPointF(m_frame.left(), m_parentHeight - m_frame.top()) - pos());
    painter.rotate(-m_degrees);
    const QString line =
        fontMetrics().elidedText(singleLineOf(text()), Qt::ElideRight, static_cast<int>(m_frame.width()));
    painter.drawText(QRectF(0, -m_frame.height(), m_frame.width(), m_frame.height()),
                     static_cast<int>(Qt::AlignCenter | Qt::TextSingleLine), line);
}
