#include "SheetShade.h"

#include <QEvent>
#include <QPainter>

constexpr QColor shade(0, 0, 0, 77); // darker on light and dark windows alike

SheetShade::SheetShade(QWidget *window) : QFocusFrame(window)
{
    window->installEventFilter(this);
}

void SheetShade::setShown(QWidget *window, bool shown)
{
    auto *found = window->findChild<SheetShade *>(QString(), Qt::FindDirectChildrenOnly);
    if (!found && !shown)
        return;
    if (!found)
        found = new SheetShade(window);
    found->setGeometry(window->rect());
    found->raise();
    found->setVisible(shown);
}

bool SheetShade::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QFocusFrame::eventFilter(watched, event);
}

void SheetShade::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), shade);
}
