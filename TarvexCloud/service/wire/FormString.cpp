#include "FormString.h"

#include "Escaping.h"
#include "NSStringMd5.h"

using namespace Qt::StringLiterals;

FormString::FormString(QLatin1StringView kind) : m_string("p1="_L1 + kind) {}

FormString &FormString::credentials(const QString &login, const QString &andPassword)
{
    return raw("p2"_L1, MD5(login)).raw("p3"_L1, MD5(andPassword));
}

FormString &FormString::text(QLatin1StringView field, const QString &userText)
{
    return raw(field, escapedForWire(userText));
}

FormString &FormString::number(QLatin1StringView field, qint64 value)
{
    return raw(field, formNumber(value));
}

FormString &FormString::raw(QLatin1StringView field, const QString &value)
{
    m_string.append('&'_L1).append(field).append('='_L1).append(value);
    return *this;
}

QString formNumber(qint64 value)
{
    return QString::number(static_cast<qint32>(value));
}

QString &FormString::open(QLatin1StringView field)
{
    raw(field, {});
    return m_string;
}
