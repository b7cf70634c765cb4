#pragma once

#include <algorithm>
#include <memory>
#include <QString>
#include <vector>

/// One goal of an area within a set.
class TVXGoal
{
public:
    qint64 idOfGoal() const { return m_idOfGoal; }
    void setIdOfGoal(qint64 id) { m_idOfGoal = id; }

    /// 0 unless the answer that made the record carried it: the goals of a single area do not.
    qint64 idOfArea() const { return m_idOfArea; }
    void setIdOfArea(qint64 id) { m_idOfArea = id; }

    /// Any integer; the three that have a word are 0, 5 and 9.
    qint32 priorityOfGoal() const { return m_priorityOfGoal; }
    void setPriorityOfGoal(qint32 priority) { m_priorityOfGoal = priority; }

    const QString &nameOfGoal() const { return m_nameOfGoal; }
    void setNameOfGoal(const QString &name) { m_nameOfGoal = name; }

    /// Whether the goal is done.
    bool isChecked() const { return m_isChecked; }
    void setIsChecked(bool checked) { m_isChecked = checked; }

private:
    qint64 m_idOfGoal = 0;
    qint64 m_idOfArea = 0;
    QString m_nameOfGoal = QStringLiteral("");
    qint32 m_priorityOfGoal = 0;
    bool m_isChecked = false;
};

using TVXGoalPtr = std::shared_ptr<TVXGoal>;
using TVXGoalList = std::vector<TVXGoalPtr>;

/// How many of every hundred goals are done, cut to a whole number; without any goal 100.
inline qint64 percentDone(const TVXGoalList &goals)
{
    const auto done =
        std::count_if(goals.begin(), goals.end(), [](const TVXGoalPtr &goal) { return goal->isChecked(); });
    return goals.empty() ? 100 : done * 100 / static_cast<qint64>(goals.size());
}
