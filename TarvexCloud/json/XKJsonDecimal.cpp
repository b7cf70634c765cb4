#include "XKJsonDecimal.h"

#include "XKJsonNumberText.h"

std::optional<XKJsonDecimal> XKJsonDecimal::fromText(const QString &text)
{
    XKJsonDecimal decimal(text);
    const auto *const units = reinterpret_cast<const char16_t *>(decimal.m_text.utf16()); // ends with a zero
    if (*units != u'-' && !XKJsonText::isDigit(*units))
        return std::nullopt;
    const char16_t *const end = units + decimal.m_text.size();
    const XKJsonNumberText number = XKJsonNumberText::read(units, XKJsonText::Limit(units, end - units));
    if (number.fault != XKJsonNumberText::Fault::None || !number.exponentFits || number.end != end)
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
