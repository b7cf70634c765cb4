#include "GoalTableModel.h"

#include "ElidedLabel.h"
#include "Words.h"

#include <algorithm>
#include <array>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
constexpr std::array identifiers = {"check"_L1, "theGoal"_L1, "thePriority"_L1};
} // namespace

GoalTableModel::GoalTableModel(GoalsSource goals, QObject *parent)
    : QAbstractTableModel(parent), m_goals(std::move(goals))
{
}

QString GoalTableModel::identifierOfColumn(int column)
{
    return column >= 0 && column < columnTotal ? identifiers[static_cast<std::size_t>(column)] : QString();
}

TVXGoalPtr GoalTableModel::goalAt(int row) const
{
    const std::shared_ptr<TVXGoalList> goals = m_goals();
    const auto index = static_cast<std::size_t>(row); // a negative row is past every end
    return goals && index < goals->size() ? (*goals)[index] : TVXGoalPtr();
}

int GoalTableModel::numberOfRowsInTableView() const
{
    const std::shared_ptr<TVXGoalList> goals = m_goals();
    return goals ? static_cast<int>(goals->size()) : 0;
}

QVariant GoalTableModel::tableViewObjectValueForTableColumn(const QString &identifier, int row) const
{
    const TVXGoalPtr goal = goalAt(row);
    if (!goal)
        return {};
    if (identifier == identifiers[GoalColumn])
        return goal->nameOfGoal();
    if (identifier == identifiers[CheckColumn])
        return goal->isChecked() ? 1 : 0;
    if (identifier != identifiers[PriorityColumn])
        return {};
    const QString word = Words::priority(goal->priorityOfGoal());
    return word.isEmpty() ? QVariant() : word;
}

void GoalTableModel::tableViewSetObjectValue(const QVariant &value, const QString &forTableColumn, int row)
{
    const TVXGoalPtr goal = goalAt(row);
    if (!goal)
        return;
    Column column = columnTotal;
    if (forTableColumn == identifiers[CheckColumn]) {
        column = CheckColumn;
        goal->setIsChecked(!goal->isChecked());
        m_doneCount += goal->isChecked() ? 1 : -1;
    } else if (forTableColumn == identifiers[GoalColumn]) {
        column = GoalColumn;
        goal->setNameOfGoal(value.toString());
    } else if (forTableColumn == identifiers[PriorityColumn]) {
        column = PriorityColumn;
        if (const std::optional<qint32> priority = Words::priorityOfWord(value.toString()))
            goal->setPriorityOfGoal(*priority);
    }
    // That cell alone: a field that is open in another would be filled in anew, over what was typed.
    if (column != columnTotal)
        Q_EMIT dataChanged(index(row, column), index(row, column));
}

void GoalTableModel::addGoal(const TVXGoalPtr &goal)
{
    const std::shared_ptr<TVXGoalList> goals = m_goals();
    const int row = static_cast<int>(goals->size());
    beginInsertRows({}, row, row);
    goals->push_back(goal);
    m_doneCount += goal->isChecked() ? 1 : 0;
    endInsertRows();
}

void GoalTableModel::removeGoalAtRow(int row)
{
    const TVXGoalPtr goal = goalAt(row);
    if (!goal)
        throw std::out_of_range("no goal at the row to remove");
    beginRemoveRows({}, row, row);
    const std::shared_ptr<TVXGoalList> goals = m_goals();
    goals->erase(goals->begin() + row);
    m_doneCount -= goal->isChecked() ? 1 : 0;
    endRemoveRows();
}

void GoalTableModel::reloadData()
{
    beginResetModel();
    const std::shared_ptr<TVXGoalList> goals = m_goals();
    const auto isDone = [](const TVXGoalPtr &goal) { return goal->isChecked(); };
    m_doneCount = goals ? static_cast<int>(std::count_if(goals->begin(), goals->end(), isDone)) : 0;
    endResetModel();
}

int GoalTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : numberOfRowsInTableView();
}

int GoalTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columnTotal;
}

QVariant GoalTableModel::checkData(int row, int role) const
{
    const QVariant checked = tableViewObjectValueForTableColumn(identifiers[CheckColumn], row);
    if (!checked.isValid())
        return {};
    if (role == Qt::CheckStateRole)
        return QVariant::fromValue(checked.toBool() ? Qt::Checked : Qt::Unchecked);
    if (role == Qt::AccessibleTextRole)
        return checked.toBool() ? tr("Done") : tr("Not done");
    return {};
}

QString GoalTableModel::descriptionOfGoal(int row) const
{
    QStringList words = {checkData(row, Qt::AccessibleTextRole).toString(),
                         tableViewObjectValueForTableColumn(identifiers[PriorityColumn], row).toString()};
    words.removeAll(QString());
    return words.join(u", "_s);
}

QVariant GoalTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (index.column() == CheckColumn)
        return checkData(index.row(), role);
    if (role == Qt::AccessibleDescriptionRole && index.column() == GoalColumn)
        return descriptionOfGoal(index.row());
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    const QVariant value =
        tableViewObjectValueForTableColumn(identifierOfColumn(index.column()), index.row());
    return role == Qt::DisplayRole && value.isValid() ? singleLineOf(value.toString()) : value;
}

bool GoalTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const bool isCheck = index.column() == CheckColumn;
    if (!index.isValid() || role != (isCheck ? Qt::CheckStateRole : Qt::EditRole))
        return false;
    tableViewSetObjectValue(value, identifierOfColumn(index.column()), index.row());
    return true;
}

QVariant GoalTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (section == CheckColumn) // the boxes speak for themselves on the screen
        return role == Qt::AccessibleTextRole || role == Qt::ToolTipRole ? tr("Done") : QVariant();
    if (role != Qt::DisplayRole)
        return {};
    return section == GoalColumn ? tr("Goal") : tr("Priority");
}

Qt::ItemFlags GoalTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlag more = index.column() == CheckColumn ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren | more;
}
