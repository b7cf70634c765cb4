#include "AreaValueSlider.h"

#include "QuietLabel.h"
#include "Words.h"

#include <algorithm>
#include <QStyleOptionSlider>
#include <QStylePainter>
#include <QWheelEvent>

namespace {
constexpr QSize roomForHandle(0, 4); // some styles cut the handle's upper edge where there are tick marks
} // namespace

AreaValueSlider::AreaValueSlider(QWidget *parent) : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setTickInterval(1);
    setPageStep(2);
    setIntegerValue(Words::lowestRatedValue);
}

void AreaValueSlider::setIntegerValue(qint32 value)
{
    const bool isRated = value >= Words::lowestRatedValue && value <= Words::highestRatedValue;
    setTickPosition(isRated ? TicksBelow : NoTicks); // a mark per value would be millions
    setRange(std::min(value, Words::lowestRatedValue), std::max(value, Words::highestRatedValue));
    setValue(value);
}

QSize AreaValueSlider::sizeHint() const
{
    return QSlider::sizeHint() + roomForHandle;
}

QSize AreaValueSlider::minimumSizeHint() const
{
    return QSlider::minimumSizeHint() + roomForHandle;
}

void AreaValueSlider::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QSlider::wheelEvent(event);
    else
        event->ignore();
}

void AreaValueSlider::paintEvent(QPaintEvent *)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    option.subControls = QStyle::SC_SliderGroove | QStyle::SC_SliderHandle;
    option.state.setFlag(QStyle::State_Sunken, isSliderDown());
    if (isSliderDown())
        option.activeSubControls = QStyle::SC_SliderHandle;
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_Slider, option);
    if (tickPosition() == NoTicks)
        return;
    painter.setPen(quietShadeOf(palette().color(QPalette::WindowText)));
    const int handle = style()->pixelMetric(QStyle::PM_SliderLength, &option, this);
    const int length = style()->pixelMetric(QStyle::PM_SliderTickmarkOffset, &option, this);
    const int y = std::min(
        height() - length,
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this).bottom() + 2);
    for (int value = minimum(); value <= maximum(); ++value) {
        const int x = handle / 2 + QStyle::sliderPositionFromValue(minimum(), maximum(), value,
                                                                   width() - handle, option.upsideDown);
        painter.drawLine(x, y, x, y + length - 1);
    }
}
