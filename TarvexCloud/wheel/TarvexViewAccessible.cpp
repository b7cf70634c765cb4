#include "TarvexViewAccessible.h"

#include "ElidedLabel.h"
#include "Words.h"

#include <algorithm>

namespace {
QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *view = qobject_cast<TarvexView *>(object);
    return view ? new TarvexViewAccessible(view) : nullptr;
}
} // namespace

void TarvexViewAccessible::install()
{
    QAccessible::installFactory(makeInterface);
}

TarvexViewAccessible::~TarvexViewAccessible()
{
    for (const QAccessible::Id id : m_children)
        if (id)
            QAccessible::deleteAccessibleInterface(id);
}

QAccessibleInterface *TarvexViewAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    QAccessible::Id &id = m_children[static_cast<std::size_t>(index)];
    if (!id)                                           // the cache owns it from here on
        id = QAccessible::registerAccessibleInterface( // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
            new WheelSliceAccessible(view(), index));
    return QAccessible::accessibleInterface(id);
}

int TarvexViewAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *slice = dynamic_cast<const WheelSliceAccessible *>(child);
    return slice && slice->isValid() && slice->parent() == this ? slice->index() : -1;
}

QAccessibleInterface *TarvexViewAccessible::childAt(int x, int y) const
{
    const std::optional<int> hit = view()->pieceAt(view()->mapFromGlobal(QPointF(x, y)));
    return hit ? child(*hit) : nullptr;
}

QAccessibleInterface *TarvexViewAccessible::focusChild() const
{
    return view()->hasFocus() ? child(view()->currentPiece()) : nullptr;
}

QString TarvexViewAccessible::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Help)
        return TarvexView::tr("Arrow keys move round the wheel; Return opens the area.");
    return QAccessibleWidget::text(kind);
}

bool WheelSliceAccessible::isValid() const
{
    return m_view && m_index < m_view->areaCount();
}

QWindow *WheelSliceAccessible::window() const
{
    const QAccessibleInterface *wheel = parent();
    return wheel ? wheel->window() : nullptr;
}

QAccessibleInterface *WheelSliceAccessible::parent() const
{
    return m_view ? QAccessible::queryAccessibleInterface(m_view) : nullptr;
}

QString WheelSliceAccessible::text(QAccessible::Text kind) const
{
    const TVXAreaPtr area = m_view ? m_view->areaAt(m_index) : TVXAreaPtr();
    if (!area)
        return {};
    switch (kind) {
    case QAccessible::Name:
        return shownNameOf(area->name());
    case QAccessible::Value:
        return QString::number(area->valueOfArea());
    case QAccessible::Description:
        return m_view->wordsOfPiece(m_index);
    default:
        return {};
    }
}

QRect WheelSliceAccessible::rect() const
{
    if (!isValid())
        return {};
    const QRect local = m_view->rectOfPiece(m_index);
    return {m_view->mapToGlobal(local.topLeft()), local.size()};
}

QAccessible::State WheelSliceAccessible::state() const
{
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid)
        return state;
    state.disabled = !m_view->isEnabled();
    state.invisible = !m_view->isVisible();
    state.focusable = m_view->isEnabled();
    state.focused = m_view->hasFocus() && m_index == m_view->currentPiece();
    return state;
}

void *WheelSliceAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface *>(this);
    if (type == QAccessible::ValueInterface)
        return static_cast<QAccessibleValueInterface *>(this);
    return nullptr;
}

QStringList WheelSliceAccessible::actionNames() const
{
    return {pressAction(), setFocusAction()};
}

void WheelSliceAccessible::doAction(const QString &actionName)
{
    if (!isValid() || !m_view->isEnabled())
        return;
    if (actionName == setFocusAction()) {
        m_view->setCurrentPiece(m_index);
        m_view->setFocus(Qt::OtherFocusReason);
    } else if (actionName == pressAction()) {
        m_view->choosePiece(m_index);
    }
}

qint32 WheelSliceAccessible::valueOfArea() const
{
    const TVXAreaPtr area = m_view ? m_view->areaAt(m_index) : TVXAreaPtr();
    return area ? area->valueOfArea() : 0;
}

QVariant WheelSliceAccessible::minimumValue() const
{
    return std::min(valueOfArea(), Words::lowestRatedValue);
}

QVariant WheelSliceAccessible::maximumValue() const
{
    return std::max(valueOfArea(), Words::highestRatedValue);
}
