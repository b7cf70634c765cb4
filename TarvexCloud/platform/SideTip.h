#pragma once

#include <QLabel>

/// Plain words beside a part of their window, in the look of a tooltip. The toolkit's own tooltips follow the
/// mouse, and some end with the next key; these are for whoever came by keyboard, and stay until hidden.
class SideTip : public QLabel
{
    Q_OBJECT
public:
    explicit SideTip(QWidget *window);

    /// Shows them beside that part of the window, never over it: on the side away from the middle, or on the
    /// other one where a word would not fit.
    void showBeside(const QRect &part, const QString &words);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect roomBeside(const QRect &part) const;
};
