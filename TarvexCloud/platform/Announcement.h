#pragma once

#include <QTimer>
#include <QWidget>

/// Has assistive tools say a text that appears while the focus is elsewhere.
///
/// Each platform's bridge passes on something else: some an alert, that of Linux desktops no more than that a
/// notification came up. So a window has one, a dot that nobody sees, which comes up anew for every text.
class Announcement : public QWidget
{
    Q_OBJECT
public:
    /// Says the text in the name of the window that the widget is in, unless another follows at once. An
    /// empty one takes back what is still to be said.
    static void make(const QWidget *widget, const QString &text);

protected:
    /// A window that comes up again must not repeat what it said last.
    void hideEvent(QHideEvent *event) override;

private:
    explicit Announcement(QWidget *window);
    void say();

    QString m_text;
    QTimer m_settled;
};
