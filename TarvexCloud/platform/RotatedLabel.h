#pragma once

#include <QLabel>

/// A label turned about the bottom left corner of its frame. Frames are given with y growing upward from the
/// bottom of the parent; the widget covers the bounding box of the turned frame and lets the mouse through.
class RotatedLabel : public QLabel
{
    Q_OBJECT
public:
    explicit RotatedLabel(QWidget *parent = nullptr);

    /// Degrees, counter-clockwise positive.
    void setFrameRotation(qreal degrees);

    /// The unturned frame whose centre lands on that point once it is turned.
    void setFrameCentredAt(QPointF centre, QSizeF size, int parentHeight);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void place();

    QRectF m_frame; // y-up
    int m_parentHeight = 0;
    qreal m_degrees = 0;
};
