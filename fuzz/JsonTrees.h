#pragma once

#include "XKJsonValue.h"

#include <utility>
#include <vector>

/// What the writer writes in the place of an object that offers a proxy.
inline XKJsonValue withoutProxies(XKJsonValue value)
{
    while (const XKJsonObject *const object = value.toObject())
        value = *object->proxyForJson();
    return value;
}

inline double realOf(const XKJsonValue &number)
{
    if (number.kind() == XKJsonKind::Decimal)
        return number.decimalView().toDouble();
    return number.kind() == XKJsonKind::Integer ? static_cast<double>(number.toInteger()) : number.toReal();
}

/// Whether two values that are no containers are the same. A double comes back as one of the other numbers,
/// and the least integer as a decimal.
inline bool isSameLeaf(const XKJsonValue &given, const XKJsonValue &read)
{
    const bool isNumber = read.kind() == XKJsonKind::Integer || read.kind() == XKJsonKind::Decimal;
    if (given.kind() == XKJsonKind::Decimal && read.kind() == XKJsonKind::Decimal)
        return given.decimalView() == read.decimalView();
    if (given.kind() == XKJsonKind::Double || given.kind() == XKJsonKind::Decimal)
        return isNumber && realOf(given) == realOf(read);
    if (given.kind() == XKJsonKind::Integer && read.kind() == XKJsonKind::Decimal)
        return QString::number(given.toInteger()) == read.decimalView();
    return given.kind() == read.kind() && given.toInteger() == read.toInteger() &&
           given.toBoolean() == read.toBoolean() && given.stringView() == read.stringView();
}

/// Whether what was read is the tree that was given, looking up every member by its key. The order of
/// members counts unless they were sorted. Walks without recursion, since trees may be deep.
inline bool isSameTree(const XKJsonValue &given, const XKJsonValue &read, bool isSorted)
{
    std::vector<std::pair<XKJsonValue, XKJsonValue>> pending = {{given, read}};
    while (!pending.empty()) {
        const XKJsonValue left = withoutProxies(pending.back().first);
        const XKJsonValue right = std::move(pending.back().second);
        pending.pop_back();
        if (left.kind() != right.kind() || !left.isContainer()) {
            if (!isSameLeaf(left, right))
                return false;
            continue;
        }
        if (left.count() != right.count())
            return false;
        for (std::size_t i = 0; i < left.count(); ++i) {
            const XKJsonValue key = left.keyAt(i);
            if (!isSorted && key.stringView() != right.keyAt(i).stringView())
                return false;
            pending.emplace_back(left.at(i), key.isNone() ? right.at(i) : right.value(key.stringView()));
        }
    }
    return true;
}
