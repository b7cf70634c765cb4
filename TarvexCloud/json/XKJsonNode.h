#pragma once

#include <QStringView>
#include <QtGlobal>

class XKJsonContainer;
class XKJsonObject;

enum class XKJsonKind : quint8 {
    None, ///< no value at all: what a failed parse or a missing key gives
    Null,
    Boolean,
    Integer, ///< 64-bit, signed
    Decimal, ///< exact
    Double,
    String, ///< UTF-16 units, any of them
    Array,
    Dictionary,
    Object, ///< anything else
};

/// One value in sixteen bytes, without regard to who owns what it points at.
struct XKJsonNode
{
    enum Flag : quint64 {
        NoFlag = 0,
        Plain = 1 << 8,     ///< text that can be written as it stands: no escape, no number near infinity
        Editable = 1 << 9,  ///< a container that lives outside an arena, as an XKJsonContainer
        Indexed = 1 << 10,  ///< a dictionary in an arena; the node in front of its members tells of an index
        Distinct = 1 << 11, ///< a dictionary being read: all its keys were foreseen, so that none is repeated
    };

    /// A number of fewer units, without an exponent, is sure to be less than the largest double.
    static constexpr std::size_t longestPlainNumber = 300;

    quint64 head = 0; ///< kind, flags, and from bit 16 on a length: units of text, elements, or members
    union {
        qint64 integer = 0;
        bool boolean;
        double real;
        const char16_t *text;
        const XKJsonNode *items; ///< of a dictionary each key and its value in turn
        const XKJsonContainer *container;
        const XKJsonObject *object;
        quint64 *index;       ///< slots of a dictionary, as many as the length says
        std::size_t openedIn; ///< while a container is being read: where the one around it stands
    };

    constexpr XKJsonNode() = default;
    constexpr explicit XKJsonNode(XKJsonKind kind, std::size_t length = 0, quint64 flags = 0)
        : head(static_cast<quint64>(kind) | flags | static_cast<quint64>(length) << 16)
    {
    }
    XKJsonNode(XKJsonKind kind, const char16_t *units, std::size_t length, quint64 flags)
        : XKJsonNode(kind, length, flags)
    {
        text = units;
    }
    XKJsonNode(XKJsonKind kind, const XKJsonNode *first, std::size_t length, quint64 flags)
        : XKJsonNode(kind, length, flags)
    {
        items = first;
    }

    XKJsonKind kind() const { return static_cast<XKJsonKind>(head & 0xFF); }
    std::size_t length() const { return head >> 16; }
    void shorten(std::size_t by) { head -= static_cast<quint64>(by) << 16; }
    bool is(Flag flag) const { return (head & flag) != 0; }
    /// Of a string or a decimal.
    QStringView view() const { return {text, static_cast<qsizetype>(length())}; }
};
