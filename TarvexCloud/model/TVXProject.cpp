#include "TVXProject.h"

#include <algorithm>

TVXSetsPtr TVXProject::currentSets() const
{
    return m_currentSets ? *m_currentSets : TVXSetsPtr();
}

void TVXProject::setCurrentSets(const TVXSetsPtr &set)
{
    if (!m_currentSets)
        m_currentSets = new TVXSetsPtr; // outlives this object, hence no smart pointer
    *m_currentSets = set;
}

void TVXProject::setCurrentSetsByName(const QString &name)
{
    if (const TVXSetsPtr set = setByName(name))
        setCurrentSets(set);
}

void TVXProject::setCurrentSetsByIndex(qint32 index)
{
    if (m_sets && index >= 0 && static_cast<std::size_t>(index) < m_sets->size())
        setCurrentSets((*m_sets)[static_cast<std::size_t>(index)]);
}

TVXSetsPtr TVXProject::setByName(const QString &name) const
{
    if (!m_sets || name.isNull())
        return {};
    const auto found = std::find_if(m_sets->begin(), m_sets->end(), [&](const TVXSetsPtr &set) {
        return !set->name().isNull() && set->name() == name; // a null text equals an empty one here
    });
    return found == m_sets->end() ? TVXSetsPtr() : *found;
}
