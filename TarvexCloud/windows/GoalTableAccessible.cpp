#include "GoalTableAccessible.h"

#include "Words.h"

#include <algorithm>
#include <QHeaderView>

namespace {

constexpr int cellsInRow = GoalTableModel::columnTotal + 1; // with the row's heading

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *view = qobject_cast<GoalTableView *>(object);
    return view ? new GoalTableAccessible(view) : nullptr;
}

} // namespace

void GoalTableAccessible::install()
{
    QAccessible::installFactory(makeInterface);
}

int GoalTableAccessible::placeOf(int row, int column)
{
    return (row + 1) * cellsInRow + column + 1;
}

GoalTableAccessible::GoalTableAccessible(GoalTableView *view) : QAccessibleWidget(view, QAccessible::Table) {}

GoalTableAccessible::~GoalTableAccessible()
{
    forgetCells();
}

void GoalTableAccessible::forgetCells()
{
    for (const QAccessible::Id id : std::as_const(m_cells))
        QAccessible::deleteAccessibleInterface(id);
    m_cells.clear();
}

GoalTableView *GoalTableAccessible::view() const
{
    return static_cast<GoalTableView *>(widget());
}

int GoalTableAccessible::rowCount() const
{
    return view()->model() ? view()->model()->rowCount() : 0;
}

int GoalTableAccessible::childCount() const
{
    return (rowCount() + 1) * cellsInRow;
}

QAccessibleInterface *GoalTableAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    QAccessible::Id &id = m_cells[index];
    if (!id)                                           // the cache owns it from here on
        id = QAccessible::registerAccessibleInterface( // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
            new GoalCellAccessible(view(), index / cellsInRow - 1, index % cellsInRow - 1));
    return QAccessible::accessibleInterface(id);
}

QAccessibleInterface *GoalTableAccessible::cellAt(int row, int column) const
{
    const bool isInside = row >= 0 && row < rowCount() && column >= 0 && column < columnCount();
    return isInside ? child(placeOf(row, column)) : nullptr;
}

int GoalTableAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *cell = dynamic_cast<const GoalCellAccessible *>(child);
    return cell && cell->isValid() && cell->parent() == this ? placeOf(cell->rowIndex(), cell->columnIndex())
                                                             : -1;
}

QAccessibleInterface *GoalTableAccessible::childAt(int x, int y) const
{
    const QHeaderView *header = view()->horizontalHeader();
    const QPoint inHeader = header->mapFromGlobal(QPoint(x, y));
    if (header->rect().contains(inHeader))
        return child(placeOf(/*row=*/-1, header->logicalIndexAt(inHeader)));
    const QPoint inView = view()->viewport()->mapFromGlobal(QPoint(x, y));
    const QModelIndex index = view()->indexAt(inView);
    return view()->viewport()->rect().contains(inView) ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface *GoalTableAccessible::focusChild() const
{
    const QModelIndex current = view()->currentIndex();
    return view()->hasFocus() ? cellAt(current.row(), current.column()) : nullptr;
}

void *GoalTableAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableInterface)
        return static_cast<QAccessibleTableInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString GoalTableAccessible::columnDescription(int column) const
{
    const QAccessibleInterface *heading = child(placeOf(/*row=*/-1, column));
    return heading ? heading->text(QAccessible::Name) : QString();
}

QList<int> GoalTableAccessible::selectedRows() const
{
    QList<int> rows;
    for (const QItemSelectionRange &range : view()->selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    return rows;
}

QList<QAccessibleInterface *> GoalTableAccessible::selectedCells() const
{
    QList<QAccessibleInterface *> cells;
    const QList<int> rows = selectedRows();
    for (const int row : rows)
        for (int column = 0; column < columnCount(); ++column)
            cells.append(cellAt(row, column));
    return cells;
}

bool GoalTableAccessible::isRowSelected(int row) const
{
    return view()->selectionModel()->isRowSelected(row);
}

bool GoalTableAccessible::setRowSelected(int row, QItemSelectionModel::SelectionFlag how)
{
    const bool isPossible = row >= 0 && row < rowCount() && view()->isEnabled();
    if (isPossible)
        view()->selectionModel()->select(view()->model()->index(row, GoalTableModel::GoalColumn),
                                         how | QItemSelectionModel::Rows);
    return isPossible;
}

void GoalTableAccessible::modelChange(QAccessibleTableModelChangeEvent *event)
{
    if (event->modelChangeType() != QAccessibleTableModelChangeEvent::DataChanged) {
        forgetCells(); // other goals stand in their places
        return;
    }
    QAccessibleInterface *cell = cellAt(event->firstRow(), event->firstColumn());
    if (!cell)
        return;
    if (event->firstColumn() == GoalTableModel::CheckColumn) {
        QAccessible::State changed;
        changed.checked = true;
        QAccessibleStateChangeEvent ofTick(cell, changed);
        QAccessible::updateAccessibility(&ofTick);
    } else {
        QAccessibleEvent ofText(cell, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&ofText);
    }
}

GoalCellAccessible::GoalCellAccessible(GoalTableView *view, int row, int column)
    : m_view(view), m_row(row), m_column(column)
{
}

QModelIndex GoalCellAccessible::index() const
{
    return m_view && m_view->model() && !isHeading() ? m_view->model()->index(m_row, m_column)
                                                     : QModelIndex();
}

bool GoalCellAccessible::isValid() const
{
    return m_view && m_view->model() && m_row < m_view->model()->rowCount();
}

QWindow *GoalCellAccessible::window() const
{
    const QAccessibleInterface *table = parent();
    return table ? table->window() : nullptr;
}

QAccessibleInterface *GoalCellAccessible::parent() const
{
    return m_view ? QAccessible::queryAccessibleInterface(m_view) : nullptr;
}

QString GoalCellAccessible::text(QAccessible::Text kind) const
{
    const bool isName = kind == QAccessible::Name;
    if (!isValid() || m_column < 0 || (!isName && kind != QAccessible::Description))
        return {};
    const auto textOf = [this](int role) {
        return m_row < 0 ? m_view->model()->headerData(m_column, Qt::Horizontal, role).toString()
                         : index().data(role).toString();
    };
    if (!isName)
        return textOf(Qt::AccessibleDescriptionRole);
    const QString spoken = textOf(Qt::AccessibleTextRole);
    return spoken.isEmpty() ? textOf(Qt::DisplayRole) : spoken;
}

void GoalCellAccessible::setText(QAccessible::Text kind, const QString &text)
{
    const bool isText = kind == QAccessible::Name || kind == QAccessible::Value;
    if (isText && index().isValid() && m_view->isEnabled())
        m_view->model()->setData(index(), text); // which a tick refuses
}

QRect GoalCellAccessible::rect() const
{
    if (!isValid() || m_column < 0)
        return {};
    const QHeaderView *header = m_view->horizontalHeader();
    const QWidget *frame = m_row < 0 ? header->viewport() : m_view->viewport();
    const QRect local = m_row < 0 ? QRect(header->sectionViewportPosition(m_column), 0,
                                          header->sectionSize(m_column), header->height())
                                  : m_view->visualRect(index());
    return {frame->mapToGlobal(local.topLeft()), local.size()};
}

QAccessible::Role GoalCellAccessible::role() const
{
    if (m_column < 0)
        return QAccessible::RowHeader;
    return m_row < 0 ? QAccessible::ColumnHeader : QAccessible::Cell;
}

QAccessible::State GoalCellAccessible::state() const
{
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid)
        return state;
    state.disabled = !m_view->isEnabled();
    state.invisible = m_column < 0 || !m_view->isVisible();
    if (isHeading())
        return state;
    state.offscreen = !m_view->viewport()->rect().intersects(m_view->visualRect(index()));
    state.focusable = state.selectable = state.multiSelectable = m_view->isEnabled();
    state.focused = m_view->hasFocus() && m_view->currentIndex() == index();
    state.selected = isSelected();
    state.checkable = m_column == GoalTableModel::CheckColumn;
    state.checked = state.checkable && index().data(Qt::CheckStateRole).toInt() == Qt::Checked;
    state.editable = !state.checkable;
    return state;
}

QAccessibleInterface *GoalCellAccessible::child(int index) const
{
    QWidget *editor = m_view && index == 0 && !isHeading() ? m_view->indexWidget(this->index()) : nullptr;
    return editor ? QAccessible::queryAccessibleInterface(editor) : nullptr;
}

void *GoalCellAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableCellInterface)
        return static_cast<QAccessibleTableCellInterface *>(this);
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface *>(this);
    return nullptr;
}

bool GoalCellAccessible::isSelected() const
{
    return index().isValid() && m_view->selectionModel()->isSelected(index());
}

QList<QAccessibleInterface *> GoalCellAccessible::columnHeaderCells() const
{
    if (isHeading() || !parent())
        return {};
    return {parent()->child(GoalTableAccessible::placeOf(/*row=*/-1, m_column))};
}

QStringList GoalCellAccessible::actionNames() const
{
    if (isHeading())
        return {};
    if (m_column == GoalTableModel::CheckColumn)
        return {toggleAction(), setFocusAction()};
    if (m_column == GoalTableModel::GoalColumn)
        return {pressAction(), setFocusAction()};
    return {pressAction(), increaseAction(), decreaseAction(), setFocusAction()};
}

void GoalCellAccessible::doAction(const QString &actionName)
{
    if (!index().isValid() || !m_view->isEnabled() || !actionNames().contains(actionName))
        return;
    if (actionName == toggleAction()) {
        m_view->model()->setData(index(), {}, Qt::CheckStateRole);
    } else if (actionName == increaseAction()) {
        stepPriority(/*by=*/1);
    } else if (actionName == decreaseAction()) {
        stepPriority(/*by=*/-1);
    } else if (actionName == pressAction()) {
        m_view->openCell(index());
    } else {
        m_view->setCurrentIndex(index());
        m_view->setFocus(Qt::OtherFocusReason);
    }
}

void GoalCellAccessible::stepPriority(int by)
{
    const QStringList words = Words::priorities();
    const auto now = words.indexOf(index().data(Qt::EditRole).toString());
    m_view->model()->setData(index(), words[std::clamp<qsizetype>(now + by, 0, words.size() - 1)]);
}
