#include "DialArea.h"

#include "DialGeometry.h"
#include "ElidedLabel.h"
#include "RotatedLabel.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

DialGeometry::TextSizes textSizes(const QWidget &names, const QLabel &percent, const QLabel &average,
                                  const QLabel &caption)
{
    const QFontMetrics percentMetrics(percent.font());
    DialGeometry::TextSizes sizes;
    sizes.nameHeight = names.fontMetrics().height() + 1;
    // The longest of the names that a wheel begins with; longer ones of the user's own may be cut.
    sizes.nameWidthAtSide = names.fontMetrics().horizontalAdvance(u"Career and Business"_s) + 4;
    sizes.nameWidthBesideAverage = names.fontMetrics().horizontalAdvance(u"Romance"_s) + 4;
    sizes.percent = QSizeF(percentMetrics.horizontalAdvance(u"100%"_s) + 12, percentMetrics.height());
    sizes.average =
        QSize(average.fontMetrics().horizontalAdvance(u"-1000%"_s), average.fontMetrics().height());
    sizes.captionHeight = caption.fontMetrics().height();
    sizes.captionWidth = caption.sizeHint().width();
    return sizes;
}

} // namespace

DialArea::DialArea(QWidget *parent) : QWidget(parent) {}

void DialArea::labelsLoaded()
{
    m_wheel = findChild<QWidget *>(u"wheelView"_s);
    m_average = findChild<QLabel *>(u"labelMainPercent"_s);
    m_caption = findChild<QLabel *>(u"labelMainPercentCaption"_s);
    for (int index = 0; index < DialGeometry::areaCount; ++index) {
        const auto k = static_cast<std::size_t>(index);
        const QString name = u"label%1"_s.arg(index + 1);
        m_names[k] = findChild<ElidedLabel *>(name);
        m_percents[k] = findChild<RotatedLabel *>(name + u"Percent"_s);
        m_names[k]->setAlignment(Qt::AlignVCenter |
                                 (DialGeometry::isOnRightHalf(index) ? Qt::AlignLeft : Qt::AlignRight));
        m_percents[k]->setFrameRotation(DialGeometry::percentRotations[k]);
    }
    setAverageFont();
    place();
}

void DialArea::setAverageFont()
{
    QFont large = font();
    large.setPixelSize(qRound(QFontInfo(font()).pixelSize() * 2.6));
    large.setBold(true);
    m_average->setFont(large);
    QFont small = font();
    small.setPixelSize(qRound(QFontInfo(font()).pixelSize() * 0.92));
    m_caption->setFont(small);
}

void DialArea::place()
{
    if (!m_wheel)
        return;
    const DialGeometry dial(size(), textSizes(*this, *m_percents[0], *m_average, *m_caption));
    m_wheel->setGeometry(dial.wheel);
    m_average->setGeometry(dial.average);
    m_caption->setGeometry(dial.caption);
    for (std::size_t k = 0; k < m_names.size(); ++k) {
        m_names[k]->setGeometry(dial.names[k]);
        m_percents[k]->setFrameCentredAt(dial.percentCentres[k],
                                         textSizes(*this, *m_percents[k], *m_average, *m_caption).percent,
                                         height());
    }
}

QSize DialArea::minimumSizeHint() const
{
    if (!m_wheel)
        return QWidget::minimumSizeHint();
    return DialGeometry::minimumArea(textSizes(*this, *m_percents[0], *m_average, *m_caption));
}

void DialArea::setWheelShown(bool shown)
{
    m_wheelShown = shown;
    update();
}

void DialArea::paintEvent(QPaintEvent *)
{
    if (m_wheelShown || !m_wheel)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = palette().color(QPalette::WindowText);
    color.setAlphaF(0.25F);
    painter.setPen(QPen(color, 1.5, Qt::DashLine));
    painter.drawEllipse(m_wheel->geometry().toRectF().center(), DialGeometry::wheelRadius,
                        DialGeometry::wheelRadius);
}

void DialArea::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    place();
}

void DialArea::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::FontChange || !m_wheel)
        return;
    setAverageFont();
    place();
    updateGeometry();
}
