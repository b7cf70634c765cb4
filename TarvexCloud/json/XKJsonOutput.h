#pragma once

#include <array>
#include <bit>
#include <cstring>
#include <QString>

/// The end of a JSON text in the making. A copy can go on in its stead, so that whoever writes much keeps one
/// of their own in registers; what is not inline works on yet another one for the same reason.
class XKJsonOutput
{
public:
    explicit XKJsonOutput(QString &text) : m_text(&text) { *this = withRoom(*this, firstCapacity); }
    /// Ends the text.
    void finish() { m_text->truncate(size()); }

    void put(char16_t unit)
    {
        reserve(/*units=*/1);
        *m_end++ = unit;
    }
    template<std::size_t size>
    void put(const char16_t (&word)[size])
    {
        reserve(size);
        m_end = std::copy_n(word, size - 1, m_end);
    }
    /// Units as they stand.
    void put(QStringView units);
    /// A new line with so many spaces.
    void putLine(std::size_t spaces);
    /// A number in decimal.
    void putInteger(qint64 integer);
    /// Text between quotes; plain text needs no escapes.
    void putString(QStringView text, bool isPlain);

private:
    /// Makes sure of room for so many units, and for a little more.
    void copy(QStringView units);
    void reserve(std::size_t units)
    {
        if (Q_UNLIKELY(static_cast<std::size_t>(m_limit - m_end) < units + slack))
            *this = withRoom(*this, units + slack);
    }
    static XKJsonOutput withRoom(XKJsonOutput output, std::size_t units);
    static XKJsonOutput withEscaped(XKJsonOutput output, QStringView text);
    qsizetype size() const { return m_end - reinterpret_cast<const char16_t *>(m_text->constData()); }
    static int digitsOf(quint64 number);
    template<std::size_t step>
    static void copyBy(char16_t *to, QStringView units);

    static constexpr std::size_t firstCapacity = 128;
    static constexpr std::size_t slack = 32; // for what is written so many at a time

    QString *m_text;
    char16_t *m_end = nullptr;
    char16_t *m_limit = nullptr;
};

inline void XKJsonOutput::put(QStringView units)
{
    reserve(static_cast<std::size_t>(units.size()));
    copy(units);
}

// Most texts are too short for a call. The last step overlaps the one before, so as to read no unit beyond.
inline void XKJsonOutput::copy(QStringView units)
{
    constexpr std::size_t longestInline = 64;
    const auto length = static_cast<std::size_t>(units.size());
    if (length > longestInline)
        std::memcpy(m_end, units.utf16(), length * sizeof(char16_t));
    else if (length >= 8)
        copyBy<8>(m_end, units);
    else if (length >= 4)
        copyBy<4>(m_end, units);
    else
        for (std::size_t i = 0; i < length; ++i)
            m_end[i] = units.utf16()[i];
    m_end += length;
}

template<std::size_t step>
void XKJsonOutput::copyBy(char16_t *to, QStringView units)
{
    const auto length = static_cast<std::size_t>(units.size());
    for (std::size_t i = 0; i + step < length; i += step)
        std::memcpy(to + i, units.utf16() + i, step * sizeof(char16_t));
    std::memcpy(to + length - step, units.utf16() + length - step, step * sizeof(char16_t));
}

inline void XKJsonOutput::putLine(std::size_t spaces)
{
    reserve(spaces + 1);
    *m_end++ = u'\n';
    char16_t *const end = m_end + spaces;
    for (constexpr std::size_t step = 16; m_end < end; m_end += step)
        std::fill_n(m_end, step, u' ');
    m_end = end;
}

inline void XKJsonOutput::putString(QStringView text, bool isPlain)
{
    reserve(static_cast<std::size_t>(text.size()) + 2);
    *m_end++ = u'"';
    if (isPlain)
        copy(text);
    else
        *this = withEscaped(*this, text);
    *m_end++ = u'"'; // for which the slack has room
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
inline void XKJsonOutput::putInteger(qint64 integer)
{
    static constexpr auto pairs = [] {
        std::array<std::array<char16_t, 2>, 100> digits{};
        for (std::size_t i = 0; i < digits.size(); ++i)
            digits[i] = {static_cast<char16_t>(u'0' + i / 10), static_cast<char16_t>(u'0' + i % 10)};
        return digits;
    }();
    reserve(/*units=*/0); // the slack holds the longest number
    auto rest = static_cast<quint64>(integer);
    if (integer < 0) {
        *m_end++ = u'-';
        rest = 0 - rest;
    }
    char16_t *digit = m_end += digitsOf(rest);
    for (; rest >= 10; rest /= 100)
        std::memcpy(digit -= 2, pairs[rest % 100].data(), sizeof(pairs[0]));
    if (rest > 0 || integer == 0)
        *--digit = static_cast<char16_t>(u'0' + rest);
}
