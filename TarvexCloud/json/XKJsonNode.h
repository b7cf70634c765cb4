#pragma once

#include <QStringView>

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
    constexpr XKJsonNode() = default;
    constexpr explicit XKJsonNode(XKJsonKind kind, qint64 number = 0) : head(headOf(kind)), integer(number) {}
    explicit XKJsonNode(double number) : head(headOf(XKJsonKind::Double)), real(number) {}
    explicit XKJsonNode(const XKJsonObject *given) : head(headOf(XKJsonKind::Object)), object(given) {}
    XKJsonNode(XKJsonKind kind, QStringView units)
        : head(headOf(kind, static_cast<std::size_t>(units.size()))), text(units.utf16())
    {
    }
    XKJsonNode(XKJsonKind kind, const XKJsonNode *first, std::size_t length)
        : head(headOf(kind, length)), items(first)
    {
    }

    XKJsonKind kind() const { return static_cast<XKJsonKind>(head & 0xFF); }
    bool isContainer() const { return kind() == XKJsonKind::Array || kind() == XKJsonKind::Dictionary; }
    /// Units of text, elements of an array, members of a dictionary.
    std::size_t length() const { return head >> 8; }
    /// Elements of an array; keys and values of a dictionary, each key followed by its value.
    std::size_t itemCount() const { return kind() == XKJsonKind::Dictionary ? 2 * length() : length(); }
    /// Of a string or a decimal.
    QStringView view() const { return {text, static_cast<qsizetype>(length())}; }

    quint64 head = 0; ///< the kind, and from bit 8 on a length
    union {
        qint64 integer = 0; ///< a boolean too, as 0 or 1
        double real;
        const char16_t *text;
        const XKJsonNode *items; ///< of a large dictionary the index of XKJsonMembers lies in front of them
        const XKJsonObject *object;
    };

private:
    static constexpr quint64 headOf(XKJsonKind kind, std::size_t length = 0)
    {
        return static_cast<quint64>(kind) | static_cast<quint64>(length) << 8;
    }
};
