#pragma once

#include "XKJsonText.h"

#include <array>
#include <QString>

/// JSON text in the making. Whoever writes keeps the end of the text in a variable of their own while doing
/// so, since one kept in memory would be waited for at every step: end() and commit() hand it over.
class XKJsonOutput
{
public:
    char16_t *end() const { return m_end; }
    void commit(char16_t *end) { m_end = end; }
    QString take();

    /// Makes sure of room for so many units behind the end, which may move.
    void reserve(char16_t *&end, std::size_t units)
    {
        if (static_cast<std::size_t>(m_limit - end) < units + slack)
            end = grow(end, units + slack);
    }

    // Each of these writes at a place where there is room, and gives the end of what it wrote.
    /// Units as they stand.
    static char16_t *put(char16_t *to, const char16_t *units, std::size_t length);
    /// A new line with so many spaces.
    static char16_t *putLine(char16_t *to, std::size_t spaces);
    template<std::size_t size>
    static char16_t *put(char16_t *to, const char16_t (&word)[size])
    {
        std::memcpy(to, word, (size - 1) * sizeof(char16_t));
        return to + size - 1;
    }
    /// A number in decimal; 20 units at most.
    static char16_t *putInteger(char16_t *to, qint64 integer);

    /// Text that may need escapes; makes its own room.
    char16_t *putEscaped(char16_t *to, const char16_t *units, std::size_t length);

private:
    char16_t *grow(char16_t *end, std::size_t units);
    static int digitsOf(quint64 number);
    char16_t *begin() { return reinterpret_cast<char16_t *>(m_text.data()); }
    template<std::size_t step>
    static void copyBy(char16_t *to, const char16_t *units, std::size_t length);

    static constexpr qsizetype firstCapacity = 128;
    static constexpr std::size_t longestInline = 64;
    static constexpr std::size_t slack = 16; // for what is written so many at a time

    QString m_text = QString(firstCapacity, Qt::Uninitialized);
    char16_t *m_end = begin();
    char16_t *m_limit = m_end + firstCapacity;
};

// Most texts are too short for a call. The last step overlaps the one before, so as to read no unit beyond.
inline char16_t *XKJsonOutput::put(char16_t *to, const char16_t *units, std::size_t length)
{
    if (length > longestInline)
        std::memcpy(to, units, length * sizeof(char16_t));
    else if (length >= 8)
        copyBy<8>(to, units, length);
    else if (length >= 4)
        copyBy<4>(to, units, length);
    else
        for (std::size_t i = 0; i < length; ++i)
            to[i] = units[i];
    return to + length;
}

inline int XKJsonOutput::digitsOf(quint64 number)
{
    static constexpr auto powers = [] {
        std::array<quint64, 20> tens{}; // the first is 0, so that 0 has a digit
        for (std::size_t i = 1; i < tens.size(); ++i)
            tens[i] = i == 1 ? 10 : tens[i - 1] * 10;
        return tens;
    }();
    // log10(2) is 1233/4096 nearly enough; the table puts right what this leaves out.
    const auto guess = static_cast<std::size_t>(std::bit_width(number) * 1233 >> 12);
    return static_cast<int>(guess) + (number >= powers[guess]);
}

// Two digits a time, from the last. Written here since text from elsewhere would have to be widened, and the
// wider loads would wait for its narrow stores.
inline char16_t *XKJsonOutput::putInteger(char16_t *to, qint64 integer)
{
    static constexpr auto pairs = [] {
        std::array<std::array<char16_t, 2>, 100> digits{};
        for (std::size_t i = 0; i < digits.size(); ++i)
            digits[i] = {static_cast<char16_t>(u'0' + i / 10), static_cast<char16_t>(u'0' + i % 10)};
        return digits;
    }();
    auto rest = static_cast<quint64>(integer);
    if (integer < 0) {
        *to++ = u'-';
        rest = 0 - rest;
    }
    char16_t *const end = to + digitsOf(rest);
    char16_t *digit = end;
    for (; rest >= 10; rest /= 100)
        std::memcpy(digit -= 2, pairs[rest % 100].data(), sizeof(pairs[0]));
    if (digit != to)
        *to = static_cast<char16_t>(u'0' + rest);
    return end;
}

template<std::size_t step>
void XKJsonOutput::copyBy(char16_t *to, const char16_t *units, std::size_t length)
{
    for (std::size_t i = 0; i + step < length; i += step)
        std::memcpy(to + i, units + i, step * sizeof(char16_t));
    std::memcpy(to + length - step, units + length - step, step * sizeof(char16_t));
}

inline char16_t *XKJsonOutput::putLine(char16_t *to, std::size_t spaces)
{
    *to++ = u'\n';
    char16_t *const end = to + spaces;
    for (; to < end; to += slack)
        for (std::size_t i = 0; i < slack; ++i)
            to[i] = u' ';
    return end;
}
