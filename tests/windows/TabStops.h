#pragma once

#include <QAccessible>
#include <QTest>
#include <QWidget>

/// The names, as assistive tools hear them, of what the Tab key reaches on its way round from a widget.
inline QString tabStops(QWidget *first)
{
    QStringList names;
    first->setFocus();
    QWidget *stop = first;
    do {
        names += QAccessible::queryAccessibleInterface(stop)->text(QAccessible::Name).remove(u'&');
        QTest::keyClick(stop, Qt::Key_Tab);
        stop = first->window()->focusWidget();
    } while (stop != first && names.size() < 30);
    return names.join(QStringLiteral(", "));
}
