#pragma once

#include "XKJsonScan.h"

#include <limits>
#include <QStringView>
#include <utility>

/// A number as a text holds it.
struct XKJsonNumber
{
    const char *fault = nullptr; ///< what the reader says of it, if it is none
    bool isInteger = true;       ///< neither fraction nor exponent, and it fits 64 bits
    qint64 integer = 0;          ///< if it is one
};

/// A place in a text behind which a zero unit stands.
class XKJsonCursor
{
public:
    explicit XKJsonCursor(QStringView text) : m_place(text.utf16()), m_end(m_place + text.size()) {}

    char16_t operator*() const { return *m_place; }
    /// At a zero unit, wherever it stands.
    bool isAtEnd() const { return *m_place == u'\0'; }
    const char16_t *place() const { return m_place; }
    /// The text from a place up to here.
    QStringView textFrom(const char16_t *start) const { return {start, m_place}; }

    void pass() { ++m_place; }
    bool passIf(char16_t unit)
    {
        if (*m_place != unit) // a jump is foreseen, where a sum would be waited for
            return false;
        ++m_place;
        return true;
    }
    /// A word, or nothing if it does not stand there in full.
    bool passIf(QStringView word)
    {
        const bool stands = QStringView(m_place, m_end).startsWith(word);
        m_place += stands ? word.size() : 0;
        return stands;
    }
    void passSpaces()
    {
        if (*m_place == u' ' && m_place[1] > u' ') { // behind a colon, say
            ++m_place;
            return;
        }
        while (*m_place <= u' ' && XKJsonScan::isSpace(*m_place))
            passBlanks();
    }
    /// Whether there were any.
    bool passDigits()
    {
        const char16_t *const start =
            std::exchange(m_place, XKJsonScan::after(XKJsonScan::isDigit, m_place, m_end));
        return m_place != start;
    }
    /// Passes string text up to where it cannot just go on, half a surrogate pair included, and gives it.
    QStringView takeRun()
    {
        const char16_t *const start = m_place;
        do
            m_place = XKJsonScan::after(XKJsonScan::isText, m_place, m_end);
        while (passPair());
        return textFrom(start);
    }
    /// Reads a number, of which the cursor stands on a minus or the first digit; behind it or at its fault
    /// after.
    XKJsonNumber takeNumber();

private:
    /// Whether the line that begins here has as many blanks as the last one had.
    bool isIndentedAsBefore() const
    {
        return m_end - m_place > m_indent && m_place[m_indent] > u' ' &&
               XKJsonScan::after(XKJsonScan::isBlank, m_place, m_place + m_indent) == m_place + m_indent;
    }
    void passBlanks()
    {
        const bool isLine = *m_place++ == u'\n';
        if (isLine && isIndentedAsBefore()) {
            m_place += m_indent; // known before the blanks are counted, so that nothing waits for that
            return;
        }
        const char16_t *const first =
            std::exchange(m_place, XKJsonScan::after(XKJsonScan::isBlank, m_place, m_end));
        if (isLine)
            m_indent = m_place - first;
    }
    bool passPair()
    {
        const bool stands = XKJsonScan::isHighSurrogate(m_place[0]) && XKJsonScan::isLowSurrogate(m_place[1]);
        m_place += stands ? 2 : 0;
        return stands;
    }
    /// What is wrong with it, if anything.
    const char *passExponent();

    const char16_t *m_place;
    const char16_t *m_end;
    qptrdiff m_indent = 0; ///< blanks that the last line began with
};

inline XKJsonNumber XKJsonCursor::takeNumber()
{
    constexpr qptrdiff mostDigits = std::numeric_limits<qint64>::digits10 + 1; // never wraps unsigned
    constexpr quint64 largest = std::numeric_limits<qint64>::max();
    const bool isNegative = passIf(u'-');
    if (*m_place == u'0' && XKJsonScan::isDigit(m_place[1]))
        return {"Leading 0 disallowed in number"};
    const char16_t *const digits = m_place;
    quint64 value = 0;
    for (; XKJsonScan::isDigit(*m_place) && m_place - digits < mostDigits; ++m_place)
        value = value * 10 + static_cast<quint64>(*m_place - u'0');
    if (m_place == digits)
        return {"No digits after initial minus"};
    bool isInteger = !(XKJsonScan::isDigit(*m_place) && passDigits()) && value <= largest;
    if (passIf(u'.')) {
        isInteger = false;
        if (!passDigits())
            return {"No digits after decimal point"};
    }
    if (passIf(u'e') || passIf(u'E')) {
        isInteger = false;
        if (const char *const fault = passExponent())
            return {fault};
    }
    const auto integer = static_cast<qint64>(isInteger ? value : 0);
    return {nullptr, isInteger, isNegative ? -integer : integer};
}

// A decimal's exponent must fit 32 bits.
inline const char *XKJsonCursor::passExponent()
{
    const bool isNegative = passIf(u'-');
    if (!isNegative)
        passIf(u'+');
    const char16_t *digit = m_place;
    if (!passDigits())
        return "No digits after exponent";
    const qint64 largest = std::numeric_limits<qint32>::max() + qint64(isNegative);
    qint64 exponent = 0;
    for (; digit != m_place && exponent <= largest; ++digit)
        exponent = exponent * 10 + (*digit - u'0');
    return exponent > largest ? "Failed creating decimal instance" : nullptr;
}
