#include "RefusedSaves.h"

namespace tarvex::requests {

constexpr std::size_t placesPerSaver = 64;

void RefusedSaves::signedIn(const std::string &saver)
{
    const std::lock_guard lock(m_mutex);
    if (m_known.find(saver) != nullptr)
        return;
    Entries &known = m_known[saver];
    if (Entries *entries = m_strangers.find(saver))
        known = std::move(*entries);
    m_strangers.erase(saver);
}

void RefusedSaves::refused(const std::string &saver, std::optional<wire::GoalPlace> place)
{
    const auto until = m_clock() + lifetime;
    const std::lock_guard lock(m_mutex);
    Entries *known = m_known.find(saver);
    Entries &entries = known != nullptr ? *known : m_strangers[saver];
    std::erase_if(entries, [&](const Entry &entry) { return entry.place == place; });
    if (entries.size() >= placesPerSaver)
        entries.pop_front();
    entries.push_back(Entry{.place = place, .until = until});
}

void RefusedSaves::accepted(const std::string &saver, wire::GoalPlace place)
{
    const std::lock_guard lock(m_mutex);
    if (Entries *entries = m_known.find(saver))
        std::erase_if(*entries, [&](const Entry &entry) { return entry.place == place; });
}

bool RefusedSaves::takeRefusal(const std::string &saver, const std::set<wire::GoalPlace> &places)
{
    const auto now = m_clock();
    const std::lock_guard lock(m_mutex);
    Entries *entries = m_known.find(saver);
    if (entries == nullptr)
        return false;
    std::erase_if(*entries, [&](const Entry &entry) { return entry.until <= now; });
    const auto isTaken = [&](const Entry &entry) { return !entry.place || places.contains(*entry.place); };
    return std::erase_if(*entries, isTaken) > 0;
}

} // namespace tarvex::requests
