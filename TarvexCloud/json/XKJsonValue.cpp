#include "XKJsonValue.h"

#include "XKJsonMembers.h"
#include "XKJsonMemory.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

struct OwnedText final : XKJsonShared
{
    explicit OwnedText(const QString &string) : text(string.isNull() ? u""_s : string) {}

    const QString text;
};

struct OwnedObject final : XKJsonShared
{
    explicit OwnedObject(std::shared_ptr<const XKJsonObject> given) : object(std::move(given)) {}

    const std::shared_ptr<const XKJsonObject> object;
};

} // namespace

/// An array or dictionary outside of any arena, which can be edited while nobody else holds it.
class XKJsonContainer final : public XKJsonShared
{
public:
    explicit XKJsonContainer(XKJsonKind kind, std::size_t items = fewestItems) : m_kind(kind)
    {
        makeRoom(std::bit_ceil(items));
    }
    explicit XKJsonContainer(const XKJsonValue &original)
        : XKJsonContainer(original.kind(), std::max(original.m_node.itemCount(), fewestItems))
    {
        for (std::size_t place = 0; place < original.m_node.itemCount(); ++place)
            append(original.item(original.m_node.items[place]));
        if (m_kind == XKJsonKind::Dictionary)
            XKJsonMembers::index(m_items, length());
    }
    ~XKJsonContainer() override
    {
        for (XKJsonShared *const owner : m_owners)
            if (owner)
                owner->release();
    }

    XKJsonShared *ownerOf(const XKJsonNode &item) override
    {
        return m_owners[static_cast<std::size_t>(&item - m_items)];
    }
    /// As values hold it; an edit makes it another one.
    XKJsonNode node() const { return XKJsonNode(m_kind, m_items, length()); }

    void append(XKJsonValue item)
    {
        if (m_owners.size() == m_capacity)
            makeRoom(2 * m_capacity);
        m_items[m_owners.size()] = item.m_node;
        m_owners.push_back(item.m_owner);
        item.m_owner = nullptr;
    }
    void setValue(XKJsonValue key, XKJsonValue value)
    {
        if (const XKJsonNode *const found = XKJsonMembers::find(node(), key.m_node))
            return replace(*found, std::move(value));
        const std::size_t members = length();
        append(std::move(key));
        append(std::move(value));
        const bool sameIndex = XKJsonMembers::indexBytes(members) == XKJsonMembers::indexBytes(members + 1);
        XKJsonMembers::index(m_items, members + 1, sameIndex ? members : 0);
    }
    void replace(const XKJsonNode &item, XKJsonValue value)
    {
        const auto place = static_cast<std::size_t>(&item - m_items);
        std::swap(m_items[place], value.m_node);
        std::swap(m_owners[place], value.m_owner);
    }
    void remove(std::size_t place, std::size_t count)
    {
        for (std::size_t i = place; i < place + count; ++i)
            (void)XKJsonValue(m_items[i], m_owners[i]); // lets go of it
        std::copy(m_items + place + count, m_items + m_owners.size(), m_items + place);
        const auto first = m_owners.begin() + static_cast<std::ptrdiff_t>(place);
        m_owners.erase(first, first + static_cast<std::ptrdiff_t>(count));
        if (m_kind == XKJsonKind::Dictionary)
            XKJsonMembers::index(m_items, length());
    }

private:
    std::size_t length() const
    {
        return m_kind == XKJsonKind::Dictionary ? m_owners.size() / 2 : m_owners.size();
    }

    void makeRoom(std::size_t capacity)
    {
        const bool isDictionary = m_kind == XKJsonKind::Dictionary;
        const std::size_t indexBytes = isDictionary ? XKJsonMembers::indexBytes(capacity / 2) : 0;
        auto memory = std::make_unique<std::byte[]>(indexBytes + capacity * sizeof(XKJsonNode));
        auto *const items = reinterpret_cast<XKJsonNode *>(memory.get() + indexBytes);
        std::copy_n(m_items, m_owners.size(), items);
        m_items = items;
        m_memory = std::move(memory);
        m_capacity = capacity;
    }

    static constexpr std::size_t fewestItems = 4;

    XKJsonKind m_kind;
    std::unique_ptr<std::byte[]> m_memory; // of a dictionary with room for its index in front of the items
    XKJsonNode *m_items = nullptr;
    std::size_t m_capacity = 0;           // in items
    std::vector<XKJsonShared *> m_owners; // of the items
};

XKJsonValue::XKJsonValue(const QString &string)
{
    auto *const owned = new OwnedText(string);
    m_node = XKJsonNode(XKJsonKind::String, owned->text);
    m_owner = owned;
}

XKJsonValue::XKJsonValue(const XKJsonValue &other) : m_node(other.m_node), m_owner(other.m_owner)
{
    if (m_owner)
        m_owner->retain();
}

XKJsonValue::~XKJsonValue()
{
    if (m_owner)
        m_owner->release();
}

XKJsonValue XKJsonValue::decimal(const XKJsonDecimal &value)
{
    auto *const owned = new OwnedText(value.text());
    return XKJsonValue(XKJsonNode(XKJsonKind::Decimal, owned->text), owned);
}

XKJsonValue XKJsonValue::array(std::initializer_list<XKJsonValue> elements)
{
    auto *const container = new XKJsonContainer(XKJsonKind::Array);
    for (const XKJsonValue &element : elements)
        container->append(element);
    return XKJsonValue(container->node(), container);
}

XKJsonValue XKJsonValue::dictionary(std::initializer_list<Member> members)
{
    auto *const container = new XKJsonContainer(XKJsonKind::Dictionary);
    for (const auto &[key, value] : members)
        container->setValue(key, value);
    return XKJsonValue(container->node(), container);
}

XKJsonValue XKJsonValue::object(std::shared_ptr<const XKJsonObject> object)
{
    if (!object)
        return {};
    const XKJsonNode node(object.get());
    return XKJsonValue(node, new OwnedObject(std::move(object)));
}

std::optional<XKJsonDecimal> XKJsonValue::toDecimal() const
{
    if (kind() != XKJsonKind::Decimal)
        return std::nullopt;
    return XKJsonDecimal(m_node.view().toString());
}

XKJsonValue XKJsonValue::keyAt(std::size_t index) const
{
    const XKJsonNode *const found = &itemAt(index);
    return kind() == XKJsonKind::Dictionary ? item(found[-1]) : XKJsonValue();
}

void XKJsonValue::append(XKJsonValue element)
{
    if (kind() == XKJsonKind::Array)
        edit([&](XKJsonContainer &container) { container.append(std::move(element)); });
}

void XKJsonValue::setValue(XKJsonValue key, XKJsonValue value)
{
    if (kind() == XKJsonKind::Dictionary)
        edit([&](XKJsonContainer &container) { container.setValue(std::move(key), std::move(value)); });
}

void XKJsonValue::replaceAt(std::size_t index, XKJsonValue value)
{
    (void)itemAt(index);
    edit([&](XKJsonContainer &container) { container.replace(itemAt(index), std::move(value)); });
}

void XKJsonValue::removeAt(std::size_t index)
{
    (void)itemAt(index);
    const std::size_t each = kind() == XKJsonKind::Dictionary ? 2 : 1;
    edit([&](XKJsonContainer &container) { container.remove(each * index, each); });
}

XKJsonValue XKJsonValue::item(const XKJsonNode &node) const
{
    XKJsonShared *const owner = m_owner->ownerOf(node);
    if (owner)
        owner->retain();
    return XKJsonValue(node, owner);
}

const XKJsonNode &XKJsonValue::itemAt(std::size_t index) const
{
    if (index >= count())
        throw std::out_of_range("no such element");
    return m_node.items[kind() == XKJsonKind::Dictionary ? 2 * index + 1 : index];
}

XKJsonValue XKJsonValue::valueUnder(const XKJsonNode &key) const
{
    if (kind() != XKJsonKind::Dictionary)
        return {};
    const XKJsonNode *const found = XKJsonMembers::find(m_node, key);
    return found ? item(*found) : XKJsonValue();
}

// Somebody else may hold the container, or it is part of a tree that was read: then a copy of it is edited.
template<typename Edit>
void XKJsonValue::edit(Edit edit)
{
    auto *container = m_owner->isHeldOnce() ? dynamic_cast<XKJsonContainer *>(m_owner) : nullptr;
    if (!container) {
        container = new XKJsonContainer(*this);
        *this = XKJsonValue(container->node(), container);
    }
    edit(*container);
    m_node = container->node();
}
