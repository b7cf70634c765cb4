#include "Sheet.h"

#include "SheetShade.h"
#include "SheetStyle.h"

#include <algorithm>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

namespace {

#ifdef Q_OS_MACOS
constexpr bool platformHasSheets = true;
constexpr Qt::WindowFlags frame;
#else
constexpr bool platformHasSheets = false;
// A window manager's frame would offer to minimize and maximize it.
constexpr Qt::WindowFlags frame = Qt::FramelessWindowHint;
#endif

/// Moved as little as possible; what is larger than the screen keeps its top and its left side.
QRect movedOntoScreen(QRect place, const QRect &screen)
{
    place.moveRight(qMin(place.right(), screen.right()));
    place.moveBottom(qMin(place.bottom(), screen.bottom()));
    place.moveLeft(qMax(place.left(), screen.left()));
    place.moveTop(qMax(place.top(), screen.top()));
    return place;
}

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

Sheet::Sheet(QWidget *ownWindow) : QDialog(ownWindow, Qt::Sheet | frame)
{
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
    SheetStyle::mirrorLabels(this);
    const auto buttons = findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        button->setAutoDefault(!platformHasSheets); // Return presses it while it has the focus
    if (m_window && !platformHasSheets) {
        setSizeGripEnabled(layout() && layout()->sizeConstraint() != QLayout::SetFixedSize);
        placeOnWindow();
        SheetShade::setShown(m_window, /*shown=*/true);
    }
    open();
    m_attached.start();
}

void Sheet::placeOnWindow()
{
    const bool wasResized = testAttribute(Qt::WA_Resized);
    if (layout())
        layout()->activate(); // which may set a fixed size
    if (!wasResized)
        adjustSize();
    const auto *mainWindow = qobject_cast<QMainWindow *>(m_window);
    const QWidget *content = mainWindow ? mainWindow->centralWidget() : nullptr;
    QRect place(QPoint(), size());
    place.moveCenter(m_window->geometry().center());
    place.moveTop((content ? content : m_window)->mapToGlobal(QPoint()).y());
    setGeometry(movedOntoScreen(place, m_window->screen()->availableGeometry()));
    setAttribute(Qt::WA_Resized, wasResized);
}

void Sheet::endSheet()
{
    if (!m_begun)
        return;
    m_begun = false;
    hide();
    // A window manager loses the way back to the window when an alert over the sheet has just gone, too.
    if (m_window && QGuiApplication::applicationState() == Qt::ApplicationActive)
        m_window->activateWindow();
    // After the current action, whose next sheet comes before those that wait.
    QTimer::singleShot(0, qApp, [window = m_window] {
        const QList<Sheet *> waiting = begunOn(window);
        if (!waiting.isEmpty() && !hasSheet(window))
            waiting.first()->attach();
        if (window && !hasSheet(window))
            SheetShade::setShown(window, /*shown=*/false);
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
    if (event->type() == QEvent::WindowActivate) {
        tellPosition();
        Q_EMIT didBecomeKey();
    } else if (event->type() == QEvent::LayoutRequest && layout() && isVisible())
        growToFit();
    return handled;
}

/// Under X11 the toolkit's window may take itself to be at the screen's corner, where a window manager has it
/// for a moment: it would be resized there, and lists and alerts come up as if it were.
void Sheet::tellPosition()
{
    if (!platformHasSheets && windowHandle()->position() != pos())
        windowHandle()->setPosition(pos());
}

void Sheet::growToFit()
{
    // The toolkit enforces a least height, but not that of wrapped text that has just appeared.
    const int needed =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width()) : sizeHint().height();
    if (needed <= height())
        return;
    if (platformHasSheets)
        return resize(width(), needed);
    tellPosition();
    resize(width(), needed);
    move(movedOntoScreen(geometry(), screen()->availableGeometry()).topLeft());
}

void Sheet::keyPressEvent(QKeyEvent *event)
{
    const auto *field = qobject_cast<QLineEdit *>(focusWidget());
    const bool mayPress =
        platformHasSheets || (field && !field->isReadOnly()) || qobject_cast<QPushButton *>(focusWidget());
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (mayPress || !isReturn)
        QDialog::keyPressEvent(event);
}

void Sheet::reject()
{
    Q_EMIT cancelRequested();
}

void Sheet::mousePressEvent(QMouseEvent *event)
{
    if (!platformHasSheets && event->button() == Qt::LeftButton)
        windowHandle()->startSystemMove();
    QDialog::mousePressEvent(event);
}

void Sheet::paintEvent(QPaintEvent *event)
{
    QDialog::paintEvent(event);
    if (platformHasSheets)
        return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Dark));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}
