#include "RefusedSaves.h"

#include "Incidents.h"

#include <algorithm>

namespace tarvex::requests {

namespace {

constexpr std::size_t placesPerSaver = 64;

store::SavePlace stored(const std::optional<wire::GoalPlace> &place)
{
    return place ? store::SavePlace(place->setId, place->areaId) : store::SavePlace();
}

} // namespace

RefusedSaves::RefusedSaves(store::Database &database, const Clocks &clocks, std::size_t capacity)
    : m_database(database), m_clocks(clocks), m_memory(std::make_shared<Memory>(capacity))
{
}

void RefusedSaves::Memory::add(const std::string &saver, const Entry &entry)
{
    Entries *ofKnown = known.find(saver);
    Entries &entries = ofKnown != nullptr ? *ofKnown : strangers[saver];
    std::erase_if(entries, [&](const Entry &other) { return other.place == entry.place; });
    if (entries.size() >= placesPerSaver)
        entries.pop_front();
    entries.push_back(entry);
}

void RefusedSaves::signedIn(const std::string &saver)
{
    const std::lock_guard lock(m_memory->mutex);
    if (m_memory->known.find(saver) != nullptr)
        return;
    Entries &known = m_memory->known[saver];
    if (Entries *entries = m_memory->strangers.find(saver))
        known = std::move(*entries);
    m_memory->strangers.erase(saver);
}

bool RefusedSaves::refused(const std::string &saver, std::optional<wire::GoalPlace> place)
{
    const Entry entry{.place = place, .until = m_clocks.steady() + lifetime};
    {
        const std::lock_guard lock(m_memory->mutex);
        if (m_memory->known.find(saver) == nullptr) {
            m_memory->add(saver, entry);
            return false;
        }
    }
    const std::int64_t until = m_clocks.seconds() + std::chrono::seconds(lifetime).count();
    m_database.write(
        [=](store::Connection &connection) {
            store::addRefusedSave(connection, saver, stored(place), until);
        },
        [=, memory = m_memory](const std::exception_ptr &failure) {
            const std::lock_guard lock(memory->mutex);
            if (failure)
                memory->add(saver, entry);
        });
    return true;
}

void RefusedSaves::accepted(store::Connection &connection, const std::string &saver,
                            std::optional<wire::GoalPlace> place)
{
    if (!place)
        return;
    store::forgetRefusedSave(connection, saver, stored(place));
    const std::lock_guard lock(m_memory->mutex);
    if (Entries *entries = m_memory->known.find(saver))
        std::erase_if(*entries, [&](const Entry &entry) { return entry.place == place; });
}

bool RefusedSaves::takeRefusal(store::Connection &connection, const std::string &saver,
                               const std::set<wire::GoalPlace> &places)
{
    bool isTaken = false;
    for (const store::SavePlace &place : store::refusedSavesOf(connection, saver, m_clocks.seconds())) {
        const bool isAny = place == stored({});
        if (!isAny && !places.contains({.setId = place.first, .areaId = place.second}))
            continue;
        isTaken = true;
        // By itself, since nothing stays of the delete that is refused.
        m_database.write([=](store::Connection &later) { store::forgetRefusedSave(later, saver, place); },
                         [](const std::exception_ptr &) {});
    }
    // Last, since work that fails may be run once more, and memory does not go back with the transaction.
    return takeFromMemory(saver, places) || isTaken;
}

bool RefusedSaves::takeFromMemory(const std::string &saver, const std::set<wire::GoalPlace> &places)
{
    const auto now = m_clocks.steady();
    const std::lock_guard lock(m_memory->mutex);
    Entries *entries = m_memory->known.find(saver);
    if (entries == nullptr)
        return false;
    std::erase_if(*entries, [&](const Entry &entry) { return entry.until <= now; });
    const auto isTaken = [&](const Entry &entry) { return !entry.place || places.contains(*entry.place); };
    return std::erase_if(*entries, isTaken) > 0;
}

} // namespace tarvex::requests
