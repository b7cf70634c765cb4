#include "AreaValueSlider.h"

#include "Words.h"

#include <algorithm>
#include <QWheelEvent>

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

void AreaValueSlider::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QSlider::wheelEvent(event);
    else
        event->ignore();
}
