#include "XKJsonValue.h"

#include "XKJsonCursor.h"
#include "XKJsonMembers.h"
#include "XKJsonMemory.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// What a value points at or into, if it was not read from a text.
template<typename Held>
struct Owner final : XKJsonShared
{
    explicit Owner(Held given) : held(std::move(given)) {}

    const Held held;
};

bool isDecimal(const QString &text)
{
    (void)text.utf16(); // makes sure that a zero stands behind it
    XKJsonCursor c(text);
    const char16_t *const start = c.place();
    const bool begins = *c == u'-' || XKJsonScan::isDigit(*c);
    return begins && !c.takeNumber().fault && c.textFrom(start).size() == text.size();
}

} // namespace

/// An array or dictionary outside of any arena, which can be edited while nobody else holds it.
class XKJsonContainer final : public XKJsonShared
{
public:
    explicit XKJsonContainer(XKJsonKind kind, std::size_t items = 0) : m_kind(kind)
    {
        makeRoom(std::bit_ceil(std::max(items, fewestItems)));
    }
    explicit XKJsonContainer(const XKJsonValue &original)
        : XKJsonContainer(original.kind(), original.m_node.itemCount())
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

    XKJsonShared *ownerOf(const XKJsonNode &item) override { return m_owners[placeOf(item)]; }
    /// As values hold it; an edit makes it another one.
    XKJsonNode node() const { return XKJsonNode(m_kind, m_items, length()); }

    void append(XKJsonValue item)
    {
        if (m_owners.size() == m_capacity)
            makeRoom(2 * m_capacity);
        m_items[m_owners.size()] = item.m_node;
        m_owners.push_back(std::exchange(item.m_owner, nullptr));
    }
    void setValue(XKJsonValue key, XKJsonValue value)
    {
        if (const XKJsonNode *const found = XKJsonMembers::find(node(), key.m_node)) {
            std::swap(m_items[placeOf(*found)], value.m_node);
            std::swap(m_owners[placeOf(*found)], value.m_owner);
            return;
        }
        const std::size_t members = length();
        append(std::move(key));
        append(std::move(value));
        const bool sameIndex = XKJsonMembers::indexBytes(members) == XKJsonMembers::indexBytes(members + 1);
        XKJsonMembers::index(m_items, members + 1, sameIndex ? members : 0);
    }

private:
    bool isDictionary() const { return m_kind == XKJsonKind::Dictionary; }
    std::size_t length() const { return isDictionary() ? m_owners.size() / 2 : m_owners.size(); }
    std::size_t placeOf(const XKJsonNode &item) const { return static_cast<std::size_t>(&item - m_items); }

    void makeRoom(std::size_t capacity)
    {
        const std::size_t indexBytes = isDictionary() ? XKJsonMembers::indexBytes(capacity / 2) : 0;
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
    auto *const owner = new Owner<QString>(string.isNull() ? u""_s : string);
    m_node = XKJsonNode(XKJsonKind::String, owner->held);
    m_owner = owner;
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

XKJsonValue XKJsonValue::decimal(const QString &text)
{
    if (!isDecimal(text))
        return {};
    auto *const owner = new Owner<QString>(text);
    return XKJsonValue(XKJsonNode(XKJsonKind::Decimal, owner->held), owner);
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
    return XKJsonValue(node, new Owner<std::shared_ptr<const XKJsonObject>>(std::move(object)));
}

XKJsonValue XKJsonValue::keyAt(std::size_t index) const
{
    const XKJsonNode *const found = &itemAt(index);
    return kind() == XKJsonKind::Dictionary ? item(found[-1]) : XKJsonValue();
}

XKJsonValue XKJsonValue::value(QStringView key) const
{
    if (kind() != XKJsonKind::Dictionary)
        return {};
    const XKJsonNode *const found = XKJsonMembers::find(m_node, XKJsonNode(XKJsonKind::String, key));
    return found ? item(*found) : XKJsonValue();
}

void XKJsonValue::append(XKJsonValue element)
{
    if (kind() != XKJsonKind::Array)
        return;
    XKJsonContainer &container = editable();
    container.append(std::move(element));
    m_node = container.node();
}

void XKJsonValue::setValue(XKJsonValue key, XKJsonValue value)
{
    if (kind() != XKJsonKind::Dictionary)
        return;
    XKJsonContainer &container = editable();
    container.setValue(std::move(key), std::move(value));
    m_node = container.node();
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

// Somebody else may hold the container, or it is part of a tree that was read: then a copy of it is edited.
XKJsonContainer &XKJsonValue::editable()
{
    auto *container = m_owner->isHeldOnce() ? dynamic_cast<XKJsonContainer *>(m_owner) : nullptr;
    if (!container) {
        container = new XKJsonContainer(*this);
        *this = XKJsonValue(container->node(), container);
    }
    return *container;
}
