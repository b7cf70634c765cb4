#include "XKJsonValue.h"

#include "XKJsonArena.h"
#include "XKJsonContainer.h"
#include "XKJsonMembers.h"
#include "XKJsonObject.h"

#include <stdexcept>

namespace {

struct OwnedText final : XKJsonShared
{
    explicit OwnedText(const QString &string) : text(string) {}
    void destroy() noexcept override { delete this; }

    const QString text;
};

struct OwnedObject final : XKJsonShared
{
    explicit OwnedObject(std::shared_ptr<const XKJsonObject> given) : object(std::move(given)) {}
    void destroy() noexcept override { delete this; }

    const std::shared_ptr<const XKJsonObject> object;
};

XKJsonNode nodeOfText(XKJsonKind kind, const OwnedText &owned)
{
    return XKJsonNode(kind, reinterpret_cast<const char16_t *>(owned.text.constData()),
                      static_cast<std::size_t>(owned.text.size()), XKJsonNode::NoFlag);
}

} // namespace

XKJsonValue::XKJsonValue(const QString &string)
{
    auto *const owned = new OwnedText(string);
    m_node = nodeOfText(XKJsonKind::String, *owned);
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

XKJsonValue XKJsonValue::null()
{
    return XKJsonValue(XKJsonNode(XKJsonKind::Null), /*owner=*/nullptr);
}

XKJsonValue XKJsonValue::boolean(bool value)
{
    XKJsonNode node(XKJsonKind::Boolean);
    node.boolean = value;
    return XKJsonValue(node, /*owner=*/nullptr);
}

XKJsonValue XKJsonValue::integer(qint64 value)
{
    XKJsonNode node(XKJsonKind::Integer);
    node.integer = value;
    return XKJsonValue(node, /*owner=*/nullptr);
}

XKJsonValue XKJsonValue::real(double value)
{
    XKJsonNode node(XKJsonKind::Double);
    node.real = value;
    return XKJsonValue(node, /*owner=*/nullptr);
}

XKJsonValue XKJsonValue::decimal(const XKJsonDecimal &value)
{
    auto *const owned = new OwnedText(value.text());
    return XKJsonValue(nodeOfText(XKJsonKind::Decimal, *owned), owned);
}

XKJsonValue XKJsonValue::array(std::initializer_list<XKJsonValue> elements)
{
    XKJsonValue array(XKJsonNode(XKJsonKind::Array), /*owner=*/nullptr);
    XKJsonContainer &container = array.editable();
    for (const XKJsonValue &element : elements)
        container.append(element);
    return array;
}

XKJsonValue XKJsonValue::dictionary(std::initializer_list<Member> members)
{
    XKJsonValue dictionary(XKJsonNode(XKJsonKind::Dictionary), /*owner=*/nullptr);
    XKJsonContainer &container = dictionary.editable();
    for (const auto &[key, value] : members)
        container.setValue(key, value);
    return dictionary;
}

XKJsonValue XKJsonValue::object(std::shared_ptr<const XKJsonObject> object)
{
    if (!object)
        return {};
    XKJsonNode node(XKJsonKind::Object);
    node.object = object.get();
    return XKJsonValue(node, new OwnedObject(std::move(object)));
}

std::optional<XKJsonDecimal> XKJsonValue::toDecimal() const
{
    if (kind() != XKJsonKind::Decimal)
        return std::nullopt;
    return XKJsonDecimal(m_node.view().toString());
}

QString XKJsonValue::toString() const
{
    return stringView().toString();
}

QStringView XKJsonValue::stringView() const
{
    return kind() == XKJsonKind::String ? m_node.view() : QStringView();
}

std::size_t XKJsonValue::count() const
{
    if (!isContainer())
        return 0;
    return m_node.is(XKJsonNode::Editable) ? m_node.container->count() : m_node.length();
}

XKJsonValue XKJsonValue::at(std::size_t index) const
{
    return item(placeOf(index));
}

XKJsonValue XKJsonValue::keyAt(std::size_t index) const
{
    const std::size_t place = placeOf(index);
    return kind() == XKJsonKind::Dictionary ? item(place - 1) : XKJsonValue();
}

XKJsonValue XKJsonValue::value(QStringView key) const
{
    if (kind() != XKJsonKind::Dictionary)
        return {};
    if (m_node.is(XKJsonNode::Editable)) {
        const XKJsonNode node(XKJsonKind::String, key.utf16(), static_cast<std::size_t>(key.size()),
                              XKJsonNode::NoFlag);
        const std::size_t place = m_node.container->placeOfValue(node);
        return place < m_node.container->items().size() ? m_node.container->items()[place] : XKJsonValue();
    }
    const XKJsonNode *const found = XKJsonMembers::find(m_node, key);
    return found ? item(static_cast<std::size_t>(found - m_node.items)) : XKJsonValue();
}

XKJsonValue XKJsonValue::valueForKey(const XKJsonValue &key) const
{
    if (key.kind() == XKJsonKind::String)
        return value(key.stringView());
    if (kind() != XKJsonKind::Dictionary || !m_node.is(XKJsonNode::Editable))
        return {}; // what was parsed has no other keys than strings
    const std::size_t place = m_node.container->placeOfValue(key.m_node);
    return place < m_node.container->items().size() ? m_node.container->items()[place] : XKJsonValue();
}

void XKJsonValue::append(XKJsonValue element)
{
    if (kind() == XKJsonKind::Array)
        editable().append(std::move(element));
}

void XKJsonValue::setValue(XKJsonValue key, XKJsonValue value)
{
    if (kind() == XKJsonKind::Dictionary)
        editable().setValue(std::move(key), std::move(value));
}

void XKJsonValue::replaceAt(std::size_t index, XKJsonValue value)
{
    const std::size_t place = placeOf(index);
    editable().replace(place, std::move(value));
}

void XKJsonValue::removeAt(std::size_t index)
{
    (void)placeOf(index);
    editable().remove(index);
}

XKJsonValue XKJsonValue::item(std::size_t place) const
{
    if (m_node.is(XKJsonNode::Editable))
        return m_node.container->items()[place];
    m_owner->retain();
    return XKJsonValue(m_node.items[place], m_owner);
}

std::size_t XKJsonValue::placeOf(std::size_t index) const
{
    if (index >= count())
        throw std::out_of_range("no such element");
    return kind() == XKJsonKind::Dictionary ? 2 * index + 1 : index;
}

XKJsonContainer &XKJsonValue::editable()
{
    if (m_node.is(XKJsonNode::Editable) && m_owner->isHeldOnce())
        return static_cast<XKJsonContainer &>(*m_owner);
    auto *const container = new XKJsonContainer(kind());
    XKJsonNode node(kind(), /*length=*/0, XKJsonNode::Editable);
    node.container = container;
    XKJsonValue own(node, container);
    const std::size_t items = kind() == XKJsonKind::Dictionary ? 2 * count() : count();
    for (std::size_t place = 0; place < items; ++place) {
        if (kind() == XKJsonKind::Array)
            container->append(item(place));
        else if (place % 2 == 1)
            container->setValue(item(place - 1), item(place));
    }
    *this = std::move(own);
    return *container;
}
