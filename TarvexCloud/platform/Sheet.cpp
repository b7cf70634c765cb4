#include "Sheet.h"

#include <algorithm>
#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QLayout>
#include <QWindow>

namespace {

/// Knows whether the user has just used the mouse, wherever in the application.
class LatestInput : public QObject
{
public:
    static LatestInput &instance()
    {
        static QPointer<LatestInput> ofApplication;
        if (!ofApplication) {
            ofApplication = new LatestInput;
            ofApplication->setParent(qApp);
            qApp->installEventFilter(ofApplication);
        }
        return *ofApplication;
    }

    bool isClick() const
    {
        return m_click.isValid() && !m_click.hasExpired(QApplication::doubleClickInterval());
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        const QEvent::Type type = event->type();
        if (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease)
            m_click.start();
        else if (type == QEvent::KeyPress || type == QEvent::ShortcutOverride)
            m_click.invalidate();
        return false;
    }

private:
    QElapsedTimer m_click;
};

} // namespace

Sheet::Sheet(QWidget *ownWindow) : QDialog(ownWindow, Qt::Sheet)
{
    setWindowModality(Qt::WindowModal);
    LatestInput::instance(); // which has to see the click that will bring the sheet up
    // A sheet that comes up again at once may still count as active, and is then not told of it anew.
    m_attached.setSingleShot(true);
    connect(&m_attached, &QTimer::timeout, this, [this] {
        if (isVisible() && isActiveWindow())
            Q_EMIT didBecomeKey();
    });
}

QList<Sheet *> Sheet::begunOn(const QWidget *window)
{
    QList<Sheet *> sheets;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *widget : windows) {
        auto *sheet = qobject_cast<Sheet *>(widget);
        if (sheet && sheet->m_begun && sheet->m_window == window)
            sheets.append(sheet);
    }
    std::sort(sheets.begin(), sheets.end(),
              [](const Sheet *a, const Sheet *b) { return a->m_turn < b->m_turn; });
    return sheets;
}

bool Sheet::hasSheet(const QWidget *window)
{
    const QList<Sheet *> sheets = begunOn(window);
    return std::any_of(sheets.begin(), sheets.end(), [](const Sheet *sheet) { return sheet->isVisible(); });
}

void Sheet::beginOn(QWidget *window)
{
    if (m_begun)
        return;
    m_window = window ? window : parentWidget();
    m_begun = true;
    static quint64 turns = 0;
    m_turn = ++turns;
    if (!hasSheet(m_window))
        attach();
}

void Sheet::attach()
{
    // The transient parent decides where the sheet is attached and whom it blocks; its owner stays the same.
    winId();
    if (m_window && m_window->windowHandle())
        windowHandle()->setTransientParent(m_window->windowHandle());
    windowHandle()->installEventFilter(this);
    m_mayBeDoubleClick.setRemainingTime(
        LatestInput::instance().isClick() ? QApplication::doubleClickInterval() : 0);
    open();
    m_attached.start();
}

void Sheet::endSheet()
{
    if (!m_begun)
        return;
    m_begun = false;
    hide();
    // After the current action, whose next sheet comes before those that wait.
    QTimer::singleShot(0, qApp, [window = m_window] {
        const QList<Sheet *> waiting = begunOn(window);
        if (!waiting.isEmpty() && !hasSheet(window))
            waiting.first()->attach();
    });
}

bool Sheet::eventFilter(QObject *watched, QEvent *event)
{
    // Before the window tells any control of it. A release goes the way of its press.
    const QEvent::Type type = event->type();
    if (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick)
        m_pressWasDropped = !m_mayBeDoubleClick.hasExpired();
    else if (type != QEvent::MouseButtonRelease)
        return QDialog::eventFilter(watched, event);
    return m_pressWasDropped;
}

bool Sheet::event(QEvent *event)
{
    const bool handled = QDialog::event(event);
    if (event->type() == QEvent::WindowActivate)
        Q_EMIT didBecomeKey();
    else if (event->type() == QEvent::LayoutRequest && layout())
        growToFit();
    return handled;
}

void Sheet::growToFit()
{
    // The toolkit enforces a least height, but not that of wrapped text that has just appeared.
    const int needed =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width()) : sizeHint().height();
    if (needed > height())
        resize(width(), needed);
}

void Sheet::reject()
{
    Q_EMIT cancelRequested();
}
