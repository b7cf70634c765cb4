#pragma once

#include "XKJsonShared.h"
#include "XKJsonValue.h"

#include <unordered_map>
#include <vector>

/// An array or dictionary outside of any arena, which can be edited.
class XKJsonContainer final : public XKJsonShared
{
public:
    explicit XKJsonContainer(XKJsonKind kind) : m_kind(kind) {}
    void destroy() noexcept override;

    /// Of a dictionary each key and its value in turn.
    const std::vector<XKJsonValue> &items() const { return m_items; }
    const XKJsonNode &node(std::size_t place) const { return m_items[place].m_node; }
    std::size_t count() const
    {
        return m_kind == XKJsonKind::Dictionary ? m_items.size() / 2 : m_items.size();
    }

    void append(XKJsonValue element) { m_items.push_back(std::move(element)); }
    void setValue(XKJsonValue key, XKJsonValue value);
    void replace(std::size_t place, XKJsonValue value) { m_items[place] = std::move(value); }
    void remove(std::size_t index);
    /// The place of the value under a key; items().size() if there is none.
    std::size_t placeOfValue(const XKJsonNode &key) const;

private:
    void indexKey(std::size_t place);

    XKJsonKind m_kind;
    std::vector<XKJsonValue> m_items;
    std::unordered_multimap<std::size_t, std::size_t> m_places; // of keys, by their hash
    XKJsonContainer *m_nextToDestroy = nullptr;
};
