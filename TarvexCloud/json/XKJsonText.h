#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <QtGlobal>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

/// How far a kind of unit reaches in UTF-16 text. Each function takes the cursor and the limit of the text,
/// behind which a zero unit must stand, and never reads beyond that unit.
namespace XKJsonText {

constexpr qptrdiff eight = 8;

/// How far eight units can be read at once in a text.
class Limit
{
public:
    constexpr Limit() = default;
    constexpr Limit(const char16_t *text, qptrdiff size)
        : m_eightsEnd(size < eight ? text : text + size - (eight - 1))
    {
    }

    /// Whether eight units can be read at the cursor.
    constexpr bool hasEightAt(const char16_t *c) const { return c < m_eightsEnd; }
    /// Whether as many units can be read at the cursor and eight more behind them.
    constexpr bool hasEightBehind(const char16_t *c, qptrdiff units) const { return m_eightsEnd - c > units; }

private:
    const char16_t *m_eightsEnd = nullptr; // behind the last place where eight units can be read
};

constexpr bool isSpace(char16_t unit)
{
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

constexpr bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

/// Whether a string's text cannot just go on here: a quote, a backslash, a control character or the end.
constexpr bool isStop(char16_t unit)
{
    return unit < 0x20 || unit == u'"' || unit == u'\\';
}

constexpr bool isSurrogate(char16_t unit)
{
    return (unit & 0xF800) == 0xD800;
}

#ifdef __SSE2__
/// Eight units at once; a test answers with two bits per unit, the first unit lowest.
class Eight
{
public:
    explicit Eight(const char16_t *units) : m_units(_mm_loadu_si128(reinterpret_cast<const __m128i *>(units)))
    {
    }

    void store(char16_t *units) const { _mm_storeu_si128(reinterpret_cast<__m128i *>(units), m_units); }

    unsigned notSpaces() const
    {
        const __m128i fromTab = _mm_sub_epi16(m_units, _mm_set1_epi16(u'\t'));
        return 0xFFFF ^ bits(_mm_or_si128(blanks(), atMost(fromTab, u'\r' - u'\t')));
    }
    /// Which of sixteen units are blanks, one bit for each.
    static unsigned blanksOf(const char16_t *units)
    {
        return bits(_mm_packs_epi16(Eight(units).blanks(), Eight(units + eight).blanks()));
    }
    unsigned notDigits() const
    {
        return 0xFFFF ^ bits(atMost(_mm_sub_epi16(m_units, _mm_set1_epi16(u'0')), /*highest=*/9));
    }
    /// The number that eight digits are.
    quint64 number() const
    {
        const __m128i digits = _mm_sub_epi16(m_units, _mm_set1_epi16(u'0'));
        const __m128i pairs = _mm_madd_epi16(digits, _mm_set1_epi32(10 | 1 << 16));
        const __m128i fours = _mm_madd_epi16(_mm_packs_epi32(pairs, pairs), _mm_set1_epi32(100 | 1 << 16));
        std::array<quint32, 4> parts{};
        _mm_storeu_si128(reinterpret_cast<__m128i *>(parts.data()), fours);
        return quint64(parts[0]) * 10'000 + parts[1];
    }
    unsigned stops() const
    {
        // Flipping the bit that parts a quote from a blank puts it next to the control characters.
        const __m128i flipped = _mm_xor_si128(m_units, _mm_set1_epi16(u'"' ^ u' '));
        const __m128i backslashes = _mm_cmpeq_epi16(m_units, _mm_set1_epi16(u'\\'));
        return bits(_mm_or_si128(atMost(flipped, /*highest=*/0x20), backslashes));
    }
    unsigned surrogates() const
    {
        const __m128i high = _mm_and_si128(m_units, _mm_set1_epi16(static_cast<short>(0xF800)));
        return bits(_mm_cmpeq_epi16(high, _mm_set1_epi16(static_cast<short>(0xD800))));
    }

    unsigned same(const Eight &other) const { return bits(_mm_cmpeq_epi16(m_units, other.m_units)); }

    void addTo(__m128i &all) const { all = _mm_or_si128(all, m_units); }
    /// Whether any unit was beyond 0x7FFF, as surrogates are.
    static bool hasHigh(__m128i all) { return (bits(all) & 0xAAAA) != 0; }

private:
    __m128i blanks() const { return _mm_cmpeq_epi16(m_units, _mm_set1_epi16(u' ')); }
    static __m128i atMost(__m128i units, short highest)
    {
        return _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(highest)), _mm_setzero_si128());
    }
    static unsigned bits(__m128i units) { return static_cast<unsigned>(_mm_movemask_epi8(units)); }

    __m128i m_units;
};

/// The unit that the lowest bit of a test's answer stands for. Two bits are a unit as two bytes are.
inline const char16_t *firstOf(unsigned found, const char16_t *c)
{
    return reinterpret_cast<const char16_t *>(reinterpret_cast<const char *>(c) + std::countr_zero(found));
}

/// Moves on to the first unit that a test of eight holds for; false if it came near the text's end first,
/// where units must be looked at singly.
template<auto Test>
inline bool findByEights(const char16_t *&c, Limit limit)
{
    for (; limit.hasEightAt(c); c += eight)
        if (const unsigned found = (Eight(c).*Test)()) {
            c = firstOf(found, c);
            return true;
        }
    return false;
}
#endif

inline const char16_t *afterManySpaces(const char16_t *c, [[maybe_unused]] Limit limit)
{
#ifdef __SSE2__
    if (findByEights<&Eight::notSpaces>(c, limit))
        return c;
#endif
    while (isSpace(*c))
        ++c;
    return c;
}

/// With how many blanks the last line began. Most lines begin as the one before: the processor, which
/// foresees that, reads on without waiting until the end of the blanks is found.
class Indent
{
public:
    void note(qptrdiff blanks)
    {
        m_blanks = blanks;
        m_reach = std::max(blanks, eight);
        m_firstBlanks = blanks < 2 * eight ? (1U << blanks) - 1 : 0xFFFF;
    }
    /// The end of as many blanks at the cursor, if just as many stand there; otherwise none. It may not
    /// notice near the text's end.
    const char16_t *after(const char16_t *c, Limit limit) const
    {
        if (!limit.hasEightBehind(c, m_reach) || c[m_blanks] <= u' ')
            return nullptr;
        const char16_t *const end = c + m_blanks;
#ifdef __SSE2__
        if ((Eight::blanksOf(c) & m_firstBlanks) != m_firstBlanks)
            return nullptr;
        if (Q_LIKELY(m_blanks <= 2 * eight))
            return end;
        while (end - c > 2 * eight) { // the last ones overlap those before
            c += 2 * eight;
            if (Eight::blanksOf(std::min(c, end - 2 * eight)) != 0xFFFF)
                return nullptr;
        }
        return end;
#else
        while (c != end && *c == u' ')
            ++c;
        return c == end ? c : nullptr;
#endif
    }

private:
    qptrdiff m_blanks = 0;
    qptrdiff m_reach = eight;   // for sixteen units, and one behind the blanks, to be there
    unsigned m_firstBlanks = 0; // a bit for each of the first sixteen
};

/// Takes note of how the line that it passes into begins.
inline const char16_t *afterSpaces(const char16_t *c, Limit limit, Indent &indent)
{
    if (*c > u' ')
        return c;
    const bool isLine = *c == u'\n';
    if (isLine)
        if (const char16_t *const found = indent.after(c + 1, limit))
            return found;
    if (*c == u' ' && c[1] > u' ')
        return c + 1;
    if (!isSpace(*c))
        return c;
    const char16_t *const found = afterManySpaces(c + 1, limit);
    if (isLine)
        indent.note(found - (c + 1));
    return found;
}

inline const char16_t *afterDigits(const char16_t *c, [[maybe_unused]] Limit limit)
{
#ifdef __SSE2__
    if (findByEights<&Eight::notDigits>(c, limit))
        return c;
#endif
    while (isDigit(*c))
        ++c;
    return c;
}

/// Whether so many units at the cursor are those that stand elsewhere, further ahead in the same text. It may
/// not notice near the text's end.
inline bool isRepeated(const char16_t *c, Limit limit, const char16_t *earlier, std::size_t length)
{
#ifdef __SSE2__
    if (!limit.hasEightBehind(c, static_cast<qptrdiff>(length)))
        return false;
    for (; length >= eight; length -= eight, c += eight, earlier += eight)
        if (Eight(c).same(Eight(earlier)) != 0xFFFF)
            return false;
    const unsigned rest = (1U << 2 * length) - 1;
    return (Eight(c).same(Eight(earlier)) & rest) == rest;
#else
    return limit.hasEightBehind(c, static_cast<qptrdiff>(length)) && std::equal(c, c + length, earlier);
#endif
}

/// The end of a run of string text. Also tells whether the run may hold surrogates; it may be wrong in that.
inline const char16_t *afterRun(const char16_t *c, [[maybe_unused]] Limit limit, bool &mayHaveSurrogates)
{
    mayHaveSurrogates = false;
#ifdef __SSE2__
    __m128i all = _mm_setzero_si128();
    for (; limit.hasEightAt(c); c += eight) {
        const Eight units(c);
        units.addTo(all);
        if (const unsigned stops = units.stops()) {
            mayHaveSurrogates = Eight::hasHigh(all);
            return firstOf(stops, c);
        }
    }
    mayHaveSurrogates = Eight::hasHigh(all);
#endif
    for (; !isStop(*c); ++c)
        mayHaveSurrogates |= isSurrogate(*c);
    return c;
}

/// Copies a run; up to seven units behind it may be overwritten.
inline void copyRun(char16_t *to, const char16_t *c, const char16_t *end, [[maybe_unused]] Limit limit)
{
#ifdef __SSE2__
    for (; c < end && limit.hasEightAt(c); c += eight, to += eight)
        Eight(c).store(to);
#endif
    while (c < end)
        *to++ = *c++;
}

/// Whether every surrogate of the text belongs to a pair, that is, whether the text has a UTF-8 form.
inline bool isPaired(const char16_t *c, const char16_t *end)
{
    while (c != end) {
#ifdef __SSE2__
        if (!findByEights<&Eight::surrogates>(c, Limit(c, end - c)) && c == end)
            break;
#endif
        if (isSurrogate(*c)) {
            if (*c >= 0xDC00 || c + 1 == end || (c[1] & 0xFC00) != 0xDC00)
                return false;
            ++c;
        }
        ++c;
    }
    return true;
}

/// The first byte of the UTF-8 form of the character at the cursor.
inline unsigned firstByte(const char16_t *c)
{
    const unsigned unit = *c;
    if (unit < 0x80)
        return unit;
    if (unit < 0x800)
        return 0xC0 | unit >> 6;
    if ((unit & 0xFC00) == 0xD800 && (c[1] & 0xFC00) == 0xDC00)
        return 0xF0 | (((unit & 0x3FF) + 0x40) >> 8);
    return 0xE0 | unit >> 12;
}

} // namespace XKJsonText
