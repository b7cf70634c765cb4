#pragma once

#include "XKJsonScan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <QString>
#include <utility>

/// The end of a JSON text in the making.
class XKJsonOutput
{
public:
    XKJsonOutput() { makeRoom(/*units=*/512); }
    /// The text; the output is of no more use.
    QString take()
    {
        m_text.truncate(used());
        return std::move(m_text);
    }

    void put(char16_t unit)
    {
        reserve(/*units=*/1);
        *m_end++ = unit;
    }
    /// Units as they stand.
    void put(QStringView units)
    {
        reserve(units.size());
        m_end = std::copy_n(units.utf16(), units.size(), m_end);
    }
    /// A new line with so many spaces.
    void putLine(qsizetype spaces)
    {
        reserve(spaces + 1);
        *m_end++ = u'\n';
        m_end = std::fill_n(m_end, spaces, u' ');
    }
    /// The shortest text that reads back to the same number, an integer or a real one.
    template<typename Number>
    void putNumber(Number number)
    {
        std::array<char, 24> digits; // as many as any takes
        const char *const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        reserve(digits.size());
        m_end = std::copy_n(digits.data(), end - digits.data(), m_end);
    }
    /// Text between quotes, with escapes where it needs them.
    void putString(QStringView text);

private:
    void putEscaped(QStringView text);
    void putEscape(char16_t unit);
    void reserve(qsizetype units)
    {
        if (m_limit - m_end < units)
            makeRoom(units);
    }
    void makeRoom(qsizetype units);
    qsizetype used() const { return m_text.size() - (m_limit - m_end); }

    QString m_text;
    char16_t *m_end = nullptr;
    char16_t *m_limit = nullptr;
};

// Most texts need no escape; those are copied without waiting for what is found in them.
inline void XKJsonOutput::putString(QStringView text)
{
    reserve(text.size() + 2);
    *m_end++ = u'"';
    if (XKJsonScan::copyIf(XKJsonScan::isPlain, text.utf16(), text.size(), m_end))
        m_end += text.size();
    else
        putEscaped(text);
    put(u'"');
}
