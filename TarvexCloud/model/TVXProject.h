#pragma once

#include "TVXArea.h"
#include "TVXGoal.h"
#include "TVXSets.h"

/// The signed-in account's data. The document owns one for its whole life; the wheel and the sheets share it.
///
/// The three lists are shared, not copied: whoever holds one sees what a service request puts into it.
class TVXProject
{
public:
    TVXProject() = default;
    Q_DISABLE_COPY_MOVE(TVXProject)

    /// All sets in the service's order.
    const std::shared_ptr<TVXSetsList> &sets() const { return m_sets; }
    void setSets(const std::shared_ptr<TVXSetsList> &sets) { m_sets = sets; }

    /// The areas in the service's order; index k is slice k of the wheel. Fewer than eight are possible.
    const std::shared_ptr<TVXAreaList> &areas() const { return m_areas; }
    void setAreas(const std::shared_ptr<TVXAreaList> &areas) { m_areas = areas; }

    /// The goals on show: those of one area, of a whole set while it is printed, or none.
    const std::shared_ptr<TVXGoalList> &goals() const { return m_goals; }
    void setGoals(const std::shared_ptr<TVXGoalList> &goals) { m_goals = goals; }

    /// The project's own notion of a current set; empty until set. The wheel's choice is the set selector's.
    TVXSetsPtr currentSets() const;
    void setCurrentSets(const TVXSetsPtr &set);

    /// Makes the first set of exactly that name the current one; an unknown or null name changes nothing.
    void setCurrentSetsByName(const QString &name);
    /// Makes the set at that index the current one; an index outside the list changes nothing.
    void setCurrentSetsByIndex(qint32 index);
    /// The first set of exactly that name, or empty. A null name matches nothing.
    TVXSetsPtr setByName(const QString &name) const;

    /// The reference that currentSets() holds, null if there never was one. The project does not drop it when
    /// it is destroyed: the set normally lives in sets() too, and whoever used it may go on doing so. A
    /// caller that must not leak takes this pointer over, after the project's end, and deletes it.
    TVXSetsPtr *keptCurrentSets() const { return m_currentSets; }

private:
    std::shared_ptr<TVXSetsList> m_sets = std::make_shared<TVXSetsList>();
    std::shared_ptr<TVXAreaList> m_areas = std::make_shared<TVXAreaList>();
    std::shared_ptr<TVXGoalList> m_goals = std::make_shared<TVXGoalList>();
    TVXSetsPtr *m_currentSets = nullptr; // left alone at the end, see keptCurrentSets()
};

using TVXProjectPtr = std::shared_ptr<TVXProject>;
