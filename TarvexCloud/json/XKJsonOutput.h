#pragma once

#include "XKJsonText.h"

#include <QString>

/// JSON text in the making. Units are put without a check; reserve() makes the room for them beforehand.
class XKJsonOutput
{
public:
    /// Makes sure of room for so many units.
    void reserve(std::size_t units)
    {
        if (static_cast<std::size_t>(m_limit - m_next) < units + slack)
            grow(units + slack);
    }
    void put(char16_t unit) { *m_next++ = unit; }
    /// Text that needs no escapes.
    void put(const char16_t *units, std::size_t length);
    /// Text that may need escapes; makes its own room.
    void putEscaped(const char16_t *units, std::size_t length);
    void putAscii(const char *begin, const char *end)
    {
        while (begin != end)
            *m_next++ = static_cast<char16_t>(*begin++);
    }
    /// A new line with so many spaces; makes its own room.
    void putLine(std::size_t spaces);

    QString take();

private:
    void grow(std::size_t units);
    void putEscape(char16_t unit);

    static constexpr qsizetype firstCapacity = 128;
    static constexpr std::size_t slack = 8; // units that may be written behind the end, eight at a time

    QString m_text = QString(firstCapacity, Qt::Uninitialized);
    char16_t *m_next = begin();
    char16_t *m_limit = m_next + firstCapacity;

    char16_t *begin() { return reinterpret_cast<char16_t *>(m_text.data()); }
};

inline void XKJsonOutput::put(const char16_t *units, std::size_t length)
{
    // Most texts are too short for a call. Longer ones end with a step back, so that no unit beyond is read.
    constexpr std::size_t four = 4;
    char16_t *const to = m_next;
    m_next += length;
    if (length > 4 * four) {
        std::memcpy(to, units, length * sizeof(char16_t));
    } else if (length >= four) {
        for (std::size_t i = 0; i + four < length; i += four)
            std::memcpy(to + i, units + i, four * sizeof(char16_t));
        std::memcpy(to + length - four, units + length - four, four * sizeof(char16_t));
    } else {
        for (std::size_t i = 0; i < length; ++i)
            to[i] = units[i];
    }
}

inline void XKJsonOutput::putLine(std::size_t spaces)
{
    reserve(spaces + 1);
    *m_next++ = u'\n';
    char16_t *const end = m_next + spaces;
    for (; m_next < end; m_next += slack) // a fixed number at a time: no call, and seldom a second turn
        for (std::size_t i = 0; i < slack; ++i)
            m_next[i] = u' ';
    m_next = end;
}
