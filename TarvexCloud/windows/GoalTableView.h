#pragma once

#include <QTableView>

class GoalTableModel;

/// The table of an area's goals. Space flips the tick of the current row; typing, F2 or a double click edits
/// its text; a click on a priority opens its pop-up; Delete asks for the selected row's removal; the standard
/// copy key copies the texts of the selected rows.
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

    /// Whether a cell is being typed into.
    bool isEditingText() const;
    /// Closes an open cell; what was typed is dropped.
    void abortEditing();
    /// Closes an open cell; what was typed is kept.
    void commitEditing();

    /// Shown in the middle of an empty table.
    void setPlaceholder(const QString &text);

Q_SIGNALS:
    void removalRequested();
    /// A cell has been opened, or closed again.
    void editingChanged();

protected:
    using QTableView::edit;
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *openEditor() const;
    void fitRowsAndColumns();
    void openPopUp(const QModelIndex &index);
    void copySelectedTexts() const;

    QString m_placeholder;
};
