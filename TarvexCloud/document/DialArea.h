#pragma once

#include <array>
#include <QWidget>

struct DialGeometry;
class ElidedLabel;
class QLabel;
class RotatedLabel;

/// The part of the window round the wheel. It keeps the wheel in the middle and the labels at their places,
/// whatever the window's size and the text's; none of that mirrors in a right-to-left window.
///
/// The labels are found by their names once the layout has been loaded.
class DialArea : public QWidget
{
    Q_OBJECT
public:
    explicit DialArea(QWidget *parent = nullptr);

    /// Takes over the loaded labels, turns the percents and places everything.
    void labelsLoaded();

    /// Until there is a wheel, a faint ring stands in its place.
    void setWheelShown(bool shown);

    const std::array<ElidedLabel *, 8> &names() const { return m_names; }
    const std::array<RotatedLabel *, 8> &percents() const { return m_percents; }

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void place();
    void setAverageFont();

    bool m_wheelShown = false;
    QWidget *m_wheel = nullptr;
    QLabel *m_average = nullptr;
    QLabel *m_caption = nullptr;
    std::array<ElidedLabel *, 8> m_names = {};
    std::array<RotatedLabel *, 8> m_percents = {};
};
