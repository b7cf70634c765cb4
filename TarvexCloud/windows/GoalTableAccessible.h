#pragma once

#include "GoalTableModel.h"
#include "GoalTableView.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

/// The table of goals as assistive tools see it. The toolkit's own cells can be read and selected; these can
/// be changed too, by their actions alone.
///
/// Children are counted as the toolkit's table events count them: a first row of column headings, and in
/// each row a first cell for the row's heading, which is hidden here.
class GoalTableAccessible : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    /// Makes the toolkit use this class for every GoalTableView; calling it again changes nothing.
    static void install();

    /// The child that a cell is, or with -1 a heading.
    static int placeOf(int row, int column);

    explicit GoalTableAccessible(GoalTableView *view);
    ~GoalTableAccessible() override;

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QAccessibleInterface *cellAt(int row, int column) const override;
    int rowCount() const override;
    int columnCount() const override { return GoalTableModel::columnTotal; }
    QString rowDescription(int) const override { return {}; }
    QString columnDescription(int column) const override;

    int selectedCellCount() const override { return selectedRowCount() * columnCount(); }
    QList<QAccessibleInterface *> selectedCells() const override;
    int selectedRowCount() const override { return view()->selectedRowCount(); }
    int selectedColumnCount() const override { return 0; }
    QList<int> selectedRows() const override;
    QList<int> selectedColumns() const override { return {}; }
    bool isRowSelected(int row) const override;
    bool isColumnSelected(int) const override { return false; }
    bool selectRow(int row) override { return setRowSelected(row, QItemSelectionModel::Select); }
    bool unselectRow(int row) override { return setRowSelected(row, QItemSelectionModel::Deselect); }
    bool selectColumn(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *event) override;

private:
    GoalTableView *view() const;
    void forgetCells();
    bool setRowSelected(int row, QItemSelectionModel::SelectionFlag how);

    /// Made when first asked for; they belong to the toolkit's cache under these ids.
    mutable QHash<int, QAccessible::Id> m_cells;
};

/// One cell, by its place. A tick can be toggled; a text and a priority open when pressed and take a new
/// text; a priority also goes up and down. Row or column -1 is a heading.
class GoalCellAccessible : public QAccessibleInterface,
                           public QAccessibleTableCellInterface,
                           public QAccessibleActionInterface
{
public:
    GoalCellAccessible(GoalTableView *view, int row, int column);

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    /// The open editor, while there is one.
    QAccessibleInterface *child(int index) const override;
    QAccessibleInterface *childAt(int, int) const override { return child(/*index=*/0); }
    int childCount() const override { return child(/*index=*/0) ? 1 : 0; }
    int indexOfChild(const QAccessibleInterface *asked) const override
    {
        return asked && asked == child(/*index=*/0) ? 0 : -1;
    }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text kind, const QString &text) override;
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    int rowIndex() const override { return m_row; }
    int columnIndex() const override { return m_column; }
    int rowExtent() const override { return 1; }
    int columnExtent() const override { return 1; }
    bool isSelected() const override;
    QList<QAccessibleInterface *> columnHeaderCells() const override;
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    QAccessibleInterface *table() const override { return parent(); }

    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    bool isHeading() const { return m_row < 0 || m_column < 0; }
    QModelIndex index() const;
    void stepPriority(int by);

    QPointer<GoalTableView> m_view;
    int m_row;
    int m_column;
};
