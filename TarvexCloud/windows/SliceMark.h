#pragma once

#include <optional>
#include <QWidget>

/// A small dial with one slice filled in its colour: where an area stands on the wheel. It only decorates;
/// the text beside it says the same.
class SliceMark : public QWidget
{
    Q_OBJECT
public:
    explicit SliceMark(QWidget *parent = nullptr);

    /// 0 to 7; without an index, or with any other, it keeps its place and shows nothing.
    void setIndex(std::optional<std::size_t> index);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::optional<std::size_t> m_index;
};
