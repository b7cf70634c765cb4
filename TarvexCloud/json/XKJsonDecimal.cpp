#include "XKJsonDecimal.h"

#include "XKJsonCursor.h"

std::optional<XKJsonDecimal> XKJsonDecimal::fromText(const QString &text)
{
    XKJsonDecimal decimal(text);
    (void)decimal.m_text.utf16(); // makes sure that a zero stands behind it
    XKJsonCursor c{QStringView(decimal.m_text)};
    if (*c != u'-' && !XKJsonScan::isDigit(*c))
        return std::nullopt;
    if (c.takeNumber().fault || c.place() != QStringView(decimal.m_text).utf16() + decimal.m_text.size())
        return std::nullopt;
    return decimal;
}

QString XKJsonDecimal::digits() const
{
    QString digits;
    for (const QChar unit : QStringView(m_text).first(indexOfExponent()))
        if (unit != u'-' && unit != u'.')
            digits += unit;
    return digits;
}

qint64 XKJsonDecimal::exponent() const
{
    const QStringView text(m_text);
    const qsizetype end = indexOfExponent();
    const qsizetype point = text.indexOf(u'.');
    const qint64 written = end < text.size() ? text.sliced(end + 1).toLongLong() : 0;
    return point < 0 ? written : written - (end - point - 1);
}

qsizetype XKJsonDecimal::indexOfExponent() const
{
    const qsizetype found = m_text.indexOf(u'e', 0, Qt::CaseInsensitive);
    return found < 0 ? m_text.size() : found;
}
