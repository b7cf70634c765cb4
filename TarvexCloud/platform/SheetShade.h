#pragma once

#include <QFocusFrame>

/// Dims all of a window while a sheet is up on it. Being decoration like a focus frame, it takes neither
/// mouse nor focus, and assistive tools are not told of it.
class SheetShade : public QFocusFrame
{
    Q_OBJECT
public:
    static void setShown(QWidget *window, bool shown);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    explicit SheetShade(QWidget *window);
};
