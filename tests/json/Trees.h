#pragma once

#include "XKJsonBase.h"
#include "XKJsonValue.h"

#include <QStringList>

/// A tree in one line, with the kind of every number told.
inline QString described(const XKJsonValue &value)
{
    const bool isDictionary = value.kind() == XKJsonKind::Dictionary;
    QStringList items;
    for (std::size_t i = 0; i < value.count(); ++i)
        items.append((isDictionary ? described(value.keyAt(i)) + QStringLiteral(": ") : QString()) +
                     described(value.at(i)));
    switch (value.kind()) {
    case XKJsonKind::None:
        return QStringLiteral("none");
    case XKJsonKind::Null:
        return QStringLiteral("null");
    case XKJsonKind::Boolean:
        return value.toBoolean() ? QStringLiteral("true") : QStringLiteral("false");
    case XKJsonKind::Integer:
        return QStringLiteral("integer %1").arg(value.toInteger());
    case XKJsonKind::Decimal:
        return QStringLiteral("decimal ") + value.decimalView().toString();
    case XKJsonKind::String:
        return u'"' + value.toString() + u'"';
    case XKJsonKind::Array:
        return u'[' + items.join(QStringLiteral(", ")) + u']';
    case XKJsonKind::Dictionary:
        return u'{' + items.join(QStringLiteral(", ")) + u'}';
    case XKJsonKind::Double: // neither comes of a text
    case XKJsonKind::Object:
        break;
    }
    return QStringLiteral("another");
}

/// The trace in lines of code and message, oldest first.
inline QString traceOf(const XKJsonBase &codec)
{
    QStringList lines;
    for (const XKJsonError &error : codec.errorTrace().value_or(XKJsonErrorList()))
        lines.append(QString::number(error.code()) + u' ' + error.localizedDescription());
    return lines.join(u'\n');
}
