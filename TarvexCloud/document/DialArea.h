#pragma once

#include <array>
#include <QWidget>

class ElidedLabel;
class QLabel;
class RotatedLabel;

/// The part of the window round the wheel. It keeps the wheel in the middle and the labels at their places,
/// whatever the window's size and the text's; none of that mirrors in a right-to-left window.
class DialArea : public QWidget
{
    Q_OBJECT
public:
    explicit DialArea(QWidget *parent = nullptr);

    struct Contents
    {
        QWidget *wheel = nullptr;
        QLabel *average = nullptr;
        QLabel *caption = nullptr;
        std::array<ElidedLabel *, 8> names = {};
        std::array<RotatedLabel *, 8> percents = {};
    };
    /// What is to be placed: children of this, none of them null.
    void setContents(const Contents &contents);

    /// Until there is a wheel, a faint ring stands in its place.
    void setWheelShown(bool shown);

    /// Percents that are no longer those of a selected set are greyed, and nothing says that they were.
    void setPercentsCurrent(bool current);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void place();
    void setAverageFont();

    Contents m_contents;
};
