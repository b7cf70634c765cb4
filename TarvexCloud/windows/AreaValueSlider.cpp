#include "AreaValueSlider.h"

#include "Words.h"

#include <algorithm>
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
