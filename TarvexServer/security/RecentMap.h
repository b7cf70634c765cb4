#pragma once

#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace tarvex::security {

/// A map of bounded size that gives up the entry unused for longest when a new one needs its room. Not for
/// several threads at once.
template<class Value>
class RecentMap
{
public:
    explicit RecentMap(std::size_t capacity) : m_capacity(capacity) {}

    /// The key's value, which now counts as used, or null. Valid until the next call.
    Value *find(std::string_view key)
    {
        const auto found = m_index.find(key);
        if (found == m_index.end())
            return nullptr;
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        return &found->second->second;
    }

    /// The key's value, made empty if there was none. Valid until the next call.
    Value &operator[](std::string_view key)
    {
        if (Value *value = find(key))
            return *value;
        if (m_entries.size() >= m_capacity) {
            m_index.erase(m_entries.back().first);
            m_entries.pop_back();
        }
        m_entries.emplace_front(key, Value());
        m_index.emplace(m_entries.front().first, m_entries.begin());
        return m_entries.front().second;
    }

    void erase(std::string_view key)
    {
        const auto found = m_index.find(key);
        if (found == m_index.end())
            return;
        const auto entry = found->second;
        m_index.erase(found);
        m_entries.erase(entry);
    }

private:
    using Entries = std::list<std::pair<std::string, Value>>;

    std::size_t m_capacity;
    Entries m_entries;
    std::unordered_map<std::string_view, typename Entries::iterator> m_index; // by the keys of the entries
};

} // namespace tarvex::security
