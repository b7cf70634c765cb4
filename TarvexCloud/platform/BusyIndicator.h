#pragma once

#include <QBasicTimer>
#include <QWidget>

/// A small spinner. It keeps its place in the layout while it is idle and then shows nothing.
class BusyIndicator : public QWidget
{
    Q_OBJECT
public:
    explicit BusyIndicator(QWidget *parent = nullptr);

    void startAnimation();
    void stopAnimation();
    bool isAnimating() const { return m_timer.isActive(); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QBasicTimer m_timer;
    int m_step = 0;
};

/// Spins an indicator for as long as the scope lasts, whatever ends it.
class BusyScope
{
public:
    explicit BusyScope(BusyIndicator *indicator);
    ~BusyScope();
    Q_DISABLE_COPY_MOVE(BusyScope)

private:
    BusyIndicator *m_indicator; // not owned, may be null
};
