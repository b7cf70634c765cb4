#include "DialArea.h"

#include "DialGeometry.h"
#include "ElidedLabel.h"
#include "RotatedLabel.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

DialGeometry::TextSizes textSizes(const QWidget &names, const DialArea::Contents &contents)
{
    const QFontMetrics percentMetrics(contents.percents[0]->font());
    const QFontMetrics averageMetrics = contents.average->fontMetrics();
    DialGeometry::TextSizes sizes;
    sizes.nameHeight = names.fontMetrics().height() + 2;
    // The longest of the names that a wheel begins with; longer ones of the user's own may be cut.
    sizes.nameWidthAtSide = names.fontMetrics().horizontalAdvance(u"Career and Business"_s) + 4;
    sizes.nameWidthBesideAverage = names.fontMetrics().horizontalAdvance(u"Romance"_s) + 4;
    sizes.percent = QSizeF(percentMetrics.horizontalAdvance(u"100%"_s) + 12, percentMetrics.height());
    sizes.average = QSize(averageMetrics.horizontalAdvance(u"-1000%"_s), averageMetrics.height() + 1);
    sizes.captionHeight = contents.caption->fontMetrics().height() + 1;
    sizes.captionWidth = contents.caption->sizeHint().width();
    return sizes;
}

} // namespace

DialArea::DialArea(QWidget *parent) : QWidget(parent) {}

void DialArea::setContents(const Contents &contents)
{
    m_contents = contents;
    for (int index = 0; index < DialGeometry::areaCount; ++index)
        m_contents.names[static_cast<std::size_t>(index)]->setAlignment(
            Qt::AlignVCenter | (DialGeometry::isOnRightHalf(index) ? Qt::AlignLeft : Qt::AlignRight));
    const QString explanation =
        tr("The average of this set's eight percentages. An area without goals counts as 100%.");
    for (QLabel *label : {m_contents.average, m_contents.caption}) {
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter | Qt::AlignAbsolute);
        label->setToolTip(explanation);
        label->setAccessibleDescription(explanation);
    }
    setPercentsCurrent(/*current=*/false);
    setAverageFont();
    place();
}

void DialArea::setPercentsCurrent(bool current)
{
    m_contents.caption->setVisible(current);
    m_contents.average->setEnabled(current);
    for (RotatedLabel *percent : m_contents.percents)
        percent->setEnabled(current);
}

void DialArea::setAverageFont()
{
    QFont large = font();
    large.setPixelSize(qRound(QFontInfo(font()).pixelSize() * 2.6));
    large.setBold(true);
    m_contents.average->setFont(large);
    QFont small = font();
    small.setPixelSize(qRound(QFontInfo(font()).pixelSize() * 0.92));
    m_contents.caption->setFont(small);
}

void DialArea::place()
{
    if (!m_contents.wheel)
        return;
    const DialGeometry::TextSizes text = textSizes(*this, m_contents);
    const DialGeometry dial(size(), text);
    m_contents.wheel->setGeometry(dial.wheel);
    m_contents.average->setGeometry(dial.average);
    m_contents.caption->setGeometry(dial.caption);
    for (std::size_t k = 0; k < m_contents.names.size(); ++k) {
        m_contents.names[k]->setGeometry(dial.names[k]);
        m_contents.percents[k]->setFrameCentredAt(dial.percentCentres[k], text.percent, height());
    }
}

QSize DialArea::minimumSizeHint() const
{
    if (!m_contents.wheel)
        return QWidget::minimumSizeHint();
    return DialGeometry::minimumArea(textSizes(*this, m_contents));
}

void DialArea::setWheelShown(bool shown)
{
    m_contents.wheel->setVisible(shown);
}

void DialArea::paintEvent(QPaintEvent *)
{
    if (!m_contents.wheel || !m_contents.wheel->isHidden())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = palette().color(QPalette::WindowText);
    color.setAlphaF(0.25F);
    painter.setPen(QPen(color, 1.5, Qt::DashLine));
    painter.drawEllipse(m_contents.wheel->geometry().toRectF().center(), DialGeometry::wheelRadius,
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
    if (event->type() != QEvent::FontChange || !m_contents.wheel)
        return;
    setAverageFont();
    place();
    updateGeometry();
}
