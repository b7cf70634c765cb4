#pragma once

#include <QDeadlineTimer>
#include <QDialog>
#include <QPointer>
#include <QTimer>

/// A dialog attached to a document window, made once and reused for every showing.
///
/// It stays the child of its own document's window, so that it dies with it, but may be shown on another one.
/// A window has one sheet at a time: a second one waits until the first is ended. Escape and the close box
/// ask for the sheet's cancel action and close nothing by themselves. Return presses the button that has the
/// focus, and the default button only from a field. The second half of a double click whose first half
/// brought the sheet up is no click on it.
///
/// It is a panel without a frame just below its window's tool bars, can be dragged by any part of it that is
/// no control, and the window is dimmed meanwhile. All this is the platform's own affair where it has sheets.
class Sheet : public QDialog
{
    Q_OBJECT
public:
    explicit Sheet(QWidget *ownWindow);

    /// Shows the sheet on that window, or queues it there. On null it is shown on its own document's window.
    void beginOn(QWidget *window);
    /// Hides the sheet, or takes it out of the queue, and lets the next one waiting for the window begin.
    void endSheet();

    /// Whether it is up or waiting to come up.
    bool isBegun() const { return m_begun; }

    void reject() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void cancelRequested();
    /// The sheet has become the active window: at its showing, perhaps twice, and whenever the focus comes
    /// back to it.
    void didBecomeKey();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    static QList<Sheet *> begunOn(const QWidget *window); // in the order of their beginning
    static bool hasSheet(const QWidget *window);
    void attach();
    void placeOnWindow();
    void tellPosition();
    void growToFit();

    QPointer<QWidget> m_window;
    bool m_begun = false;
    quint64 m_turn = 0;
    QTimer m_attached; // fires once the sheet stands on its window
    QDeadlineTimer m_mayBeDoubleClick{0};
    bool m_pressWasDropped = false;
};
