#pragma once

#include <QObject>

/// Drops all user input while it is on: clicks, keys, shortcuts, wheel, touch, context menus and the window
/// manager's close request. Paint events, timers and everything else go on.
///
/// Input is dropped rather than deferred because a queued second click on a button would repeat its request.
class InputHold : public QObject
{
    Q_OBJECT
public:
    void begin();
    void end();
    /// Lets the application handle what is waiting, once.
    void turn();

    bool eventFilter(QObject *watched, QEvent *event) override;
};
