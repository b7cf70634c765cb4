#pragma once

#include <optional>
#include <QString>

/// An exact base-10 number: a sign, any number of digits and a power of ten. It keeps every digit of the
/// text it was made from, final zeros included, and gives that very text back.
class XKJsonDecimal
{
public:
    /// The number that a text in JSON's notation (RFC 8259, section 6) stands for. Nothing for any other
    /// text, and nothing when the exponent it names does not fit 32 bits.
    static std::optional<XKJsonDecimal> fromText(const QString &text);

    const QString &text() const { return m_text; }
    bool isNegative() const { return m_text.startsWith(u'-'); }
    /// All digits in front of and behind the decimal point: the number is these times ten to the exponent().
    QString digits() const;
    qint64 exponent() const;
    /// The nearest double; an infinity when the number is too large for one.
    double toDouble() const { return QStringView(m_text).toDouble(); }

private:
    friend class XKJsonValue;
    explicit XKJsonDecimal(const QString &text) : m_text(text) {}

    qsizetype indexOfExponent() const;

    QString m_text;
};
