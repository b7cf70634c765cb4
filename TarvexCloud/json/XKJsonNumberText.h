#pragma once

#include "XKJsonText.h"

#include <limits>

/// A number as it stands in a text (RFC 8259, section 6).
struct XKJsonNumberText
{
    enum class Fault { None, LeadingZero, NothingAfterMinus, NothingAfterPoint, NothingAfterExponent };

    /// Reads the number that begins at the cursor, which stands on a minus or a digit.
    static XKJsonNumberText read(const char16_t *c, XKJsonText::Limit limit);

    const char16_t *end = nullptr; ///< behind its last unit, or where the fault is
    Fault fault = Fault::None;
    bool isInteger = true; ///< neither fraction nor exponent, and it fits 64 bits
    bool hasExponent = false;
    bool exponentFits = true; ///< the exponent, if any, fits 32 bits
    qint64 integer = 0;       ///< if it is one

private:
    bool readIntegerPart(XKJsonText::Limit limit);
    bool readFraction(XKJsonText::Limit limit);
    bool readExponent(XKJsonText::Limit limit);
    bool failWith(Fault what)
    {
        fault = what;
        return false;
    }
};

inline XKJsonNumberText XKJsonNumberText::read(const char16_t *c, XKJsonText::Limit limit)
{
    XKJsonNumberText number;
    number.end = c;
    if (number.readIntegerPart(limit) && *number.end == u'.')
        number.readFraction(limit);
    if (number.fault == Fault::None && (*number.end | 0x20) == u'e')
        number.readExponent(limit);
    return number;
}

inline bool XKJsonNumberText::readIntegerPart(XKJsonText::Limit limit)
{
    const bool isNegative = *end == u'-';
    end += isNegative;
    const char16_t *const digits = end;
    if (*end == u'0') {
        ++end;
        return !XKJsonText::isDigit(*end) || failWith(Fault::LeadingZero);
    }
    if (!XKJsonText::isDigit(*end))
        return failWith(Fault::NothingAfterMinus);
    quint64 value = 0;
    constexpr qptrdiff mostDigits = std::numeric_limits<qint64>::digits10 + 1; // never wraps unsigned
#ifdef __SSE2__
    using XKJsonText::Eight;
    while (limit.hasEightAt(end) && end - digits <= mostDigits - XKJsonText::eight &&
           !Eight(end).notDigits()) {
        value = value * 100'000'000 + Eight(end).number();
        end += XKJsonText::eight;
    }
#endif
    for (; XKJsonText::isDigit(*end) && end - digits < mostDigits; ++end)
        value = value * 10 + static_cast<quint64>(*end - u'0');
    if (XKJsonText::isDigit(*end)) {
        end = XKJsonText::afterDigits(end, limit);
        isInteger = false;
    }
    if (value > static_cast<quint64>(std::numeric_limits<qint64>::max()))
        isInteger = false;
    else
        integer = isNegative ? -static_cast<qint64>(value) : static_cast<qint64>(value);
    return true;
}

inline bool XKJsonNumberText::readFraction(XKJsonText::Limit limit)
{
    isInteger = false;
    const char16_t *const digits = ++end;
    end = XKJsonText::afterDigits(end, limit);
    return end != digits || failWith(Fault::NothingAfterPoint);
}

inline bool XKJsonNumberText::readExponent(XKJsonText::Limit limit)
{
    isInteger = false;
    hasExponent = true;
    ++end;
    const bool isNegative = *end == u'-';
    end += isNegative || *end == u'+';
    const char16_t *digits = end;
    end = XKJsonText::afterDigits(end, limit);
    if (end == digits)
        return failWith(Fault::NothingAfterExponent);
    while (*digits == u'0')
        ++digits;
    constexpr qptrdiff mostDigits = std::numeric_limits<qint32>::digits10 + 1;
    exponentFits = end - digits <= mostDigits;
    qint64 exponent = 0;
    for (; exponentFits && digits != end; ++digits)
        exponent = exponent * 10 + (*digits - u'0');
    exponentFits = exponentFits && exponent <= std::numeric_limits<qint32>::max() + qint64(isNegative);
    return true;
}
