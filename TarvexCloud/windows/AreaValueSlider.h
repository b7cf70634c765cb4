#pragma once

#include <QSlider>

/// An area's value. The range is that of the rated values, widened to whatever value it is given, so that
/// showing one never changes it.
class AreaValueSlider : public QSlider
{
    Q_OBJECT
public:
    explicit AreaValueSlider(QWidget *parent = nullptr);

    qint32 integerValue() const { return value(); }
    void setIntegerValue(qint32 value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Scrolling the sheet must not change what nobody chose: only a slider with the focus follows the wheel.
    void wheelEvent(QWheelEvent *event) override;
    /// With tick marks in a shade of the text's colour: the style's own are lost on a dark window.
    void paintEvent(QPaintEvent *event) override;
};
