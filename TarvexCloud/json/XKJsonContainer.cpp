#include "XKJsonContainer.h"

#include <QHash>

namespace {

bool isContainer(const XKJsonNode &node)
{
    return node.kind() == XKJsonKind::Array || node.kind() == XKJsonKind::Dictionary;
}

std::size_t hashOf(const XKJsonNode &key)
{
    switch (key.kind()) {
    case XKJsonKind::String:
    case XKJsonKind::Decimal:
        return qHash(key.view(), QHashSeed::globalSeed());
    case XKJsonKind::Boolean:
        return key.boolean;
    case XKJsonKind::Double:
        return qHash(key.real);
    default:
        return qHash(key.integer);
    }
}

bool isSameKey(const XKJsonNode &key, const XKJsonNode &other)
{
    if (key.kind() != other.kind())
        return false;
    switch (key.kind()) {
    case XKJsonKind::None:
    case XKJsonKind::Null:
        return true;
    case XKJsonKind::Boolean:
        return key.boolean == other.boolean;
    case XKJsonKind::Double:
        return key.real == other.real;
    case XKJsonKind::String:
    case XKJsonKind::Decimal:
        return key.view() == other.view();
    default:
        return key.integer == other.integer && key.length() == other.length();
    }
}

} // namespace

// Containers inside containers wait in a list of their own, since the machine stack has its end.
void XKJsonContainer::destroy() noexcept
{
    XKJsonContainer *pending = this;
    while (pending) {
        XKJsonContainer *const container = pending;
        pending = container->m_nextToDestroy;
        for (XKJsonValue &item : container->m_items) {
            if (!isContainer(item.m_node) || !item.m_node.is(XKJsonNode::Editable))
                continue;
            auto *const inner = static_cast<XKJsonContainer *>(std::exchange(item.m_owner, nullptr));
            if (inner->drop())
                inner->m_nextToDestroy = std::exchange(pending, inner);
        }
        delete container;
    }
}

void XKJsonContainer::setValue(XKJsonValue key, XKJsonValue value)
{
    const std::size_t place = placeOfValue(key.m_node);
    if (place < m_items.size()) {
        m_items[place] = std::move(value);
        return;
    }
    m_items.push_back(std::move(key));
    m_items.push_back(std::move(value));
    indexKey(m_items.size() - 2);
}

void XKJsonContainer::remove(std::size_t index)
{
    if (m_kind == XKJsonKind::Array) {
        m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(index));
        return;
    }
    const auto member = m_items.begin() + static_cast<std::ptrdiff_t>(2 * index);
    m_items.erase(member, member + 2);
    m_places.clear();
    for (std::size_t place = 0; place < m_items.size(); place += 2)
        indexKey(place);
}

std::size_t XKJsonContainer::placeOfValue(const XKJsonNode &key) const
{
    const auto [first, last] = m_places.equal_range(hashOf(key));
    for (auto found = first; found != last; ++found)
        if (isSameKey(node(found->second), key))
            return found->second + 1;
    return m_items.size();
}

void XKJsonContainer::indexKey(std::size_t place)
{
    m_places.emplace(hashOf(node(place)), place);
}
