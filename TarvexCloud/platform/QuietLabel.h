#pragma once

#include <QLabel>

/// A label for captions and guidance: plain text in a quieter shade of the window's own text colour, so that
/// it stays readable in every palette. Without word wrap a text that is too long is cut with an ellipsis.
/// (The toolkit's placeholder colour is not: some dark palettes leave it black.)
class QuietLabel : public QLabel
{
    Q_OBJECT
public:
    explicit QuietLabel(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// A quieter shade of a text's colour: on black and white alike it keeps a contrast of more than 4.5 to 1.
QColor quietShadeOf(QColor text);
