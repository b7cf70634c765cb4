#include "InputHold.h"

#include <QCoreApplication>
#include <QEvent>

namespace {

bool isUserInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
    case QEvent::Quit:
        return true;
    default:
        return false;
    }
}

} // namespace

void InputHold::begin()
{
    QCoreApplication::instance()->installEventFilter(this);
}

void InputHold::end()
{
    QCoreApplication::instance()->removeEventFilter(this);
}

void InputHold::turn()
{
    QCoreApplication::processEvents();
}

bool InputHold::eventFilter(QObject *watched, QEvent *event)
{
    if (!isUserInput(event->type()))
        return QObject::eventFilter(watched, event);
    event->ignore(); // an accepted close would close the window all the same
    return true;
}
