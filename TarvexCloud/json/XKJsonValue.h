#pragma once

#include "XKJsonNode.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <QString>
#include <utility>

class XKJsonContainer;
class XKJsonShared;

/// One value of a tree: none, null, a boolean, a number of three kinds, a string, an array, a dictionary in
/// insertion order, or an object. Copies are cheap and share; editing one leaves the others as they are.
///
/// What was parsed lies in one piece of memory that lives as long as any value of the tree does. An array
/// or dictionary becomes one of its own at its first edit. Trees of any depth go without machine stack,
/// chains of objects that hold each other included: what is to go while something else goes, goes after it.
class XKJsonValue
{
public:
    XKJsonValue() = default;
    XKJsonValue(const QString &string); ///< a null string is an empty one here
    XKJsonValue(const XKJsonValue &other);
    XKJsonValue(XKJsonValue &&other) noexcept
        : m_node(std::exchange(other.m_node, {})), m_owner(std::exchange(other.m_owner, nullptr))
    {
    }
    XKJsonValue &operator=(XKJsonValue other) noexcept
    {
        std::swap(m_node, other.m_node);
        std::swap(m_owner, other.m_owner);
        return *this;
    }
    ~XKJsonValue();

    using Member = std::pair<XKJsonValue, XKJsonValue>;

    static XKJsonValue null() { return XKJsonValue(XKJsonNode(XKJsonKind::Null)); }
    static XKJsonValue boolean(bool value) { return XKJsonValue(XKJsonNode(XKJsonKind::Boolean, value)); }
    static XKJsonValue integer(qint64 value) { return XKJsonValue(XKJsonNode(XKJsonKind::Integer, value)); }
    /// Not-a-number and infinities can be held, but not written.
    static XKJsonValue real(double value) { return XKJsonValue(XKJsonNode(value)); }
    /// The exact number that a text in JSON's notation (RFC 8259, section 6) stands for; it keeps every
    /// digit. None for any other text, and none when the exponent it names does not fit 32 bits.
    static XKJsonValue decimal(const QString &text);
    static XKJsonValue array(std::initializer_list<XKJsonValue> elements = {});
    static XKJsonValue dictionary(std::initializer_list<Member> members = {});
    static XKJsonValue object(std::shared_ptr<const XKJsonObject> object);

    XKJsonKind kind() const { return m_node.kind(); }
    bool isNone() const { return kind() == XKJsonKind::None; }
    bool isContainer() const { return m_node.isContainer(); }

    // Each of these gives zero, false or null for a value of another kind; nothing is converted.
    bool toBoolean() const { return kind() == XKJsonKind::Boolean && m_node.integer != 0; }
    qint64 toInteger() const { return kind() == XKJsonKind::Integer ? m_node.integer : 0; }
    double toReal() const { return kind() == XKJsonKind::Double ? m_node.real : 0; }
    QString toString() const { return stringView().toString(); }
    const XKJsonObject *toObject() const { return kind() == XKJsonKind::Object ? m_node.object : nullptr; }
    /// A string's units without a copy, valid as long as any value of the same tree.
    QStringView stringView() const { return kind() == XKJsonKind::String ? m_node.view() : QStringView(); }
    /// The text of an exact number, just as it was made or read; as long valid.
    QStringView decimalView() const { return kind() == XKJsonKind::Decimal ? m_node.view() : QStringView(); }

    /// Elements of an array, members of a dictionary, 0 for anything else.
    std::size_t count() const { return isContainer() ? m_node.length() : 0; }
    /// The element of an array or the value of a dictionary's member. @throws std::out_of_range
    XKJsonValue at(std::size_t index) const { return item(itemAt(index)); }
    /// The key of a dictionary's member. @throws std::out_of_range
    XKJsonValue keyAt(std::size_t index) const;
    /// What a dictionary holds under a key; none if it does not, or if this is not a dictionary.
    XKJsonValue value(QStringView key) const;

    // Editing. A value of another kind stays as it is. What comes in is taken by value, so that a container
    // can be put into itself as it was and no circle ever forms.
    void append(XKJsonValue element);
    /// Puts a value under a key, in the place of the one there or at the end. Strings and numbers are the
    /// same key when they are equal, containers and objects when they are the very same.
    void setValue(XKJsonValue key, XKJsonValue value);

private:
    friend class XKJsonContainer;
    friend class XKJsonParser;
    friend class XKJsonWriter;

    /// Takes over the caller's hold on the owner.
    explicit XKJsonValue(const XKJsonNode &node, XKJsonShared *owner = nullptr) : m_node(node), m_owner(owner)
    {
    }

    /// A value inside this one.
    XKJsonValue item(const XKJsonNode &node) const;
    const XKJsonNode &itemAt(std::size_t index) const;
    XKJsonContainer &editable();

    XKJsonNode m_node;
    XKJsonShared *m_owner = nullptr; // what the node points at or into, if anything
};

/// Whatever else a program puts into a tree. JSON has no form of its own for it, but it may offer one.
class XKJsonObject
{
public:
    virtual ~XKJsonObject() = default;

    /// What messages call it.
    virtual QString className() const = 0;
    /// The value to be written in its place; nothing if it offers none.
    virtual std::optional<XKJsonValue> proxyForJson() const { return std::nullopt; }
};
