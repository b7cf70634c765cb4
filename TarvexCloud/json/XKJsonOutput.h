#pragma once

#include "XKJsonScan.h"

#include <algorithm>
#include <limits>
#include <QString>
#include <utility>

/// The end of a JSON text in the making.
class XKJsonOutput
{
public:
    XKJsonOutput() { makeRoom(firstCapacity); }
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
    /// A number in decimal.
    void putInteger(qint64 integer);
    /// The shortest text that reads back to the same number.
    void putReal(double real);
    /// Text between quotes, with escapes where it needs them.
    void putString(QStringView text);

private:
    void putEscape(char16_t unit);
    void reserve(qsizetype units)
    {
        if (m_limit - m_end < units)
            makeRoom(units);
    }
    void makeRoom(qsizetype units);
    qsizetype used() const { return m_text.size() - (m_limit - m_end); }

    static constexpr qsizetype firstCapacity = 128;

    QString m_text;
    char16_t *m_end = nullptr;
    char16_t *m_limit = nullptr;
};

inline void XKJsonOutput::putInteger(qint64 integer)
{
    reserve(std::numeric_limits<qint64>::digits10 + 2);
    if (integer < 0)
        *m_end++ = u'-';
    char16_t *const first = m_end;
    auto rest = static_cast<quint64>(integer);
    for (rest = integer < 0 ? 0 - rest : rest; rest >= 10; rest /= 10)
        *m_end++ = static_cast<char16_t>(u'0' + rest % 10);
    *m_end++ = static_cast<char16_t>(u'0' + rest);
    std::reverse(first, m_end);
}

inline void XKJsonOutput::putString(QStringView text)
{
    const char16_t *c = text.utf16();
    const char16_t *const end = c + text.size();
    put(u'"');
    for (;;) {
        reserve(end - c + 1);
        XKJsonScan::copy(XKJsonScan::isPlain, c, end, m_end);
        if (c == end)
            break;
        putEscape(*c++);
    }
    *m_end++ = u'"';
}
