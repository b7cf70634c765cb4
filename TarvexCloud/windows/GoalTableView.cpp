#include "GoalTableView.h"

#include "Announcement.h"
#include "GoalTableAccessible.h"
#include "GoalTableDelegates.h"
#include "GoalTableModel.h"
#include "OneLineEdit.h"
#include "QuietLabel.h"

#include <algorithm>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {
constexpr int spaceInRow = 16;
constexpr int spaceInColumn = 24;

bool isDelete(int key)
{
#ifdef Q_OS_MACOS
    if (key == Qt::Key_Backspace) // is called Delete there
        return true;
#endif
    return key == Qt::Key_Delete;
}
} // namespace

GoalTableView::GoalTableView(QWidget *parent) : QTableView(parent)
{
    GoalTableAccessible::install();
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(EditKeyPressed | AnyKeyPressed | DoubleClicked);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setWordWrap(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setMinimumSectionSize(1);
    setItemDelegateForColumn(GoalTableModel::CheckColumn, new GoalCheckDelegate(this));
    auto *texts = new GoalTextDelegate(this);
    setItemDelegateForColumn(GoalTableModel::GoalColumn, texts);
    setItemDelegateForColumn(GoalTableModel::PriorityColumn, new GoalPriorityDelegate(this));
    connect(texts, &GoalTextDelegate::textChanged, this, &GoalTableView::editingChanged);
    connect(this, &QTableView::clicked, this, &GoalTableView::cellClicked);
}

void GoalTableView::setGoals(GoalTableModel *goals)
{
    setModel(goals);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(GoalTableModel::GoalColumn, QHeaderView::Stretch);
    fitRowsAndColumns();
}

void GoalTableView::fitRowsAndColumns()
{
    // Rows of one height cost nothing to lay out, however many there are.
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + spaceInRow);
    const QComboBox sample; // the room a word needs beside its arrow
    const int words = std::max(fontMetrics().horizontalAdvance(u"Normal"_s),
                               horizontalHeader()->sectionSizeHint(GoalTableModel::PriorityColumn));
    setColumnWidth(GoalTableModel::PriorityColumn, words + sample.sizeHint().width() / 2);
    setColumnWidth(GoalTableModel::CheckColumn,
                   style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this) + spaceInColumn);
}

int GoalTableView::selectedRow() const
{
    int last = -1;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        last = std::max(last, range.bottom());
    return last;
}

int GoalTableView::selectedRowCount() const
{
    int count = 0;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        count += range.height();
    return count;
}

void GoalTableView::showRow(int row)
{
    const QModelIndex index =
        model()->index(std::clamp(row, 0, model()->rowCount() - 1), GoalTableModel::GoalColumn);
    setCurrentIndex(index);
    scrollTo(index);
}

QWidget *GoalTableView::openEditor() const
{
    return state() == EditingState ? indexWidget(currentIndex()) : nullptr;
}

bool GoalTableView::isEditingText() const
{
    return openEditor() && currentIndex().column() == GoalTableModel::GoalColumn;
}

bool GoalTableView::hasChangedText() const
{
    const auto *field = qobject_cast<OneLineEdit *>(openEditor());
    return field && field->isChanged();
}

void GoalTableView::openCell(const QModelIndex &index)
{
    commitEditing();
    setCurrentIndex(index);
    setFocus();
    edit(index, AllEditTriggers, /*event=*/nullptr);
}

void GoalTableView::abortEditing()
{
    if (QWidget *editor = openEditor())
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

void GoalTableView::commitEditing()
{
    QWidget *editor = openEditor();
    if (!editor)
        return;
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void GoalTableView::setPlaceholder(const QString &text)
{
    m_placeholder = text;
    viewport()->update();
}

bool GoalTableView::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    const bool isByKey = trigger == EditKeyPressed || trigger == AnyKeyPressed;
    QModelIndex cell = index;
    if (isByKey && index.column() == GoalTableModel::CheckColumn) {
        cell = index.siblingAtColumn(GoalTableModel::GoalColumn); // a row's text is what keys edit
        selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
    }
    const bool isHandled = QTableView::edit(cell, trigger, event);
    if (openEditor())
        Q_EMIT editingChanged();
    return isHandled;
}

void GoalTableView::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    // Tab ends the editing of this cell and opens no other.
    const bool isTab =
        hint == QAbstractItemDelegate::EditNextItem || hint == QAbstractItemDelegate::EditPreviousItem;
    QTableView::closeEditor(editor, isTab ? QAbstractItemDelegate::NoHint : hint);
    if (hasFocus() && currentIndex().isValid()) { // the toolkit tells of the table alone
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(GoalTableAccessible::placeOf(currentIndex().row(), currentIndex().column()));
        QAccessible::updateAccessibility(&event);
    }
    Q_EMIT editingChanged();
}

void GoalTableView::cellClicked(const QModelIndex &index)
{
    if (QApplication::keyboardModifiers() != Qt::NoModifier || openEditor())
        return;
    if (index.column() == GoalTableModel::PriorityColumn)
        edit(index, AllEditTriggers, /*event=*/nullptr);
    else
        selectionModel()->setCurrentIndex(index.siblingAtColumn(GoalTableModel::GoalColumn),
                                          QItemSelectionModel::NoUpdate);
}

QModelIndex GoalTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex cell = QTableView::moveCursor(action, modifiers);
    const bool isInRow = action == MoveLeft || action == MoveRight;
    return isInRow ? cell : cell.siblingAtColumn(GoalTableModel::GoalColumn);
}

void GoalTableView::mouseDoubleClickEvent(QMouseEvent *event)
{
    // Two quick clicks on a tick are two clicks.
    if (indexAt(event->position().toPoint()).column() == GoalTableModel::CheckColumn)
        mousePressEvent(event);
    else
        QTableView::mouseDoubleClickEvent(event);
}

void GoalTableView::copySelectedTexts() const
{
    QModelIndexList rows = selectionModel()->selectedRows(GoalTableModel::GoalColumn);
    std::sort(rows.begin(), rows.end());
    QStringList texts;
    for (const QModelIndex &row : rows)
        texts += row.data(Qt::EditRole).toString();
    if (!texts.isEmpty())
        QApplication::clipboard()->setText(texts.join(u'\n'));
}

void GoalTableView::keyPressEvent(QKeyEvent *event)
{
    const bool isEditing = state() == EditingState;
    const QModelIndex current = currentIndex();
    if (event->matches(QKeySequence::Copy)) {
        copySelectedTexts();
    } else if (!isEditing && isDelete(event->key()) && event->modifiers() == Qt::NoModifier) {
        Q_EMIT removalRequested();
    } else if (!isEditing && event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier &&
               current.isValid()) {
        const QModelIndex check = current.siblingAtColumn(GoalTableModel::CheckColumn);
        model()->setData(check, {}, Qt::CheckStateRole);
        Announcement::make(this,
                           check.data(Qt::AccessibleTextRole).toString()); // of another cell than the focus
    } else {
        QTableView::keyPressEvent(event);
    }
}

void GoalTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (!model() || model()->rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(quietShadeOf(palette().color(QPalette::Text)));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_placeholder);
}

void GoalTableView::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (model() && (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange))
        fitRowsAndColumns();
}
