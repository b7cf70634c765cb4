#pragma once

#include <QTableView>

class GoalTableModel;

/// The table of an area's goals. Space flips the tick of the current row; typing, F2 or a double click edits
/// its text; a click on a priority opens its pop-up; Delete asks for the selected row's removal; the standard
/// copy key copies the texts of the selected rows. The current cell is the goal's text unless the user goes
/// to another cell of the row, so that a screen reader which follows it says what the row is about.
class GoalTableView : public QTableView
{
    Q_OBJECT
public:
    explicit GoalTableView(QWidget *parent = nullptr);

    /// Not owned.
    void setGoals(GoalTableModel *goals);

    /// The last of the selected rows, or -1.
    int selectedRow() const;
    int selectedRowCount() const;
    /// Selects that row alone and scrolls to it; the nearest there is for a row outside the table.
    void showRow(int row);

    /// Whether a goal's text is being edited.
    bool isEditingText() const;
    /// Whether it is, and stands there as another text than the goal's.
    bool hasChangedText() const;
    /// Opens that cell to be changed, a text with all of it selected. What another open one holds is kept.
    void openCell(const QModelIndex &index);
    /// Closes an open cell; what was typed is dropped.
    void abortEditing();
    /// Closes an open cell; what was typed is kept.
    void commitEditing();

    /// Shown in the middle of an empty table.
    void setPlaceholder(const QString &text);

Q_SIGNALS:
    void removalRequested();
    /// A cell has been opened, its text changed, or it has been closed again.
    void editingChanged();

protected:
    using QTableView::edit;
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *openEditor() const;
    void fitRowsAndColumns();
    void cellClicked(const QModelIndex &index);
    void copySelectedTexts() const;

    QString m_placeholder;
};
