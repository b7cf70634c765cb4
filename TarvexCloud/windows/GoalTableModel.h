#pragma once

#include "TVXGoal.h"

#include <functional>
#include <memory>
#include <QAbstractTableModel>

/// The goals of an area as a table: a tick, the text, the priority's word.
///
/// It holds no goals: it asks for the shared list anew each time, and an absent list is an empty table. Who
/// changes the list other than through this model calls reloadData() afterwards.
class GoalTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    using GoalsSource = std::function<std::shared_ptr<TVXGoalList>()>;
    enum Column { CheckColumn, GoalColumn, PriorityColumn, columnTotal };

    explicit GoalTableModel(GoalsSource goals, QObject *parent = nullptr);

    /// "check", "theGoal" or "thePriority"; null for any other column.
    static QString identifierOfColumn(int column);

    /// How many goals are done, counted once per change.
    int doneCount() const { return m_doneCount; }

    int numberOfRowsInTableView() const;
    /// 1 or 0, the goal's text, or the priority's word, by the column's identifier. Invalid where there is
    /// none: another column, no such row, a priority without a word.
    QVariant tableViewObjectValueForTableColumn(const QString &identifier, int row) const;
    /// Flips the tick whatever the value, replaces the text, or takes the priority of a word; another word
    /// changes nothing, nor does a column or row that is not there.
    void tableViewSetObjectValue(const QVariant &value, const QString &forTableColumn, int row);

    /// Appends to the list, which must exist.
    void addGoal(const TVXGoalPtr &goal);
    /// Removes from the list, which must exist. @throws std::out_of_range when it has no such row.
    void removeGoalAtRow(int row);
    /// The list was changed, or exchanged, by somebody else.
    void reloadData();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    TVXGoalPtr goalAt(int row) const;
    QVariant checkData(int row, int role) const;
    /// The rest of the row, for who hears the goal's text only.
    QString descriptionOfGoal(int row) const;

    GoalsSource m_goals;
    int m_doneCount = 0;
};
