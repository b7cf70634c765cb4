#pragma once

#include <bit>
#include <cstring>
#include <QtGlobal>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

/// How far a kind of unit reaches in UTF-16 text. Each function takes the cursor and the text's end, where a
/// zero unit must stand, and never reads beyond that.
namespace XKJsonText {

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
    static constexpr qptrdiff size = 8;

    explicit Eight(const char16_t *units) : m_units(_mm_loadu_si128(reinterpret_cast<const __m128i *>(units)))
    {
    }
    void store(char16_t *units) const { _mm_storeu_si128(reinterpret_cast<__m128i *>(units), m_units); }

    unsigned notSpaces() const
    {
        const __m128i blank = _mm_cmpeq_epi16(m_units, _mm_set1_epi16(u' '));
        const __m128i fromTab = _mm_sub_epi16(m_units, _mm_set1_epi16(u'\t'));
        return 0xFFFF ^ bits(_mm_or_si128(blank, atMost(fromTab, u'\r' - u'\t')));
    }
    unsigned notDigits() const
    {
        return 0xFFFF ^ bits(atMost(_mm_sub_epi16(m_units, _mm_set1_epi16(u'0')), /*highest=*/9));
    }
    unsigned stops() const
    {
        const __m128i quotes = _mm_cmpeq_epi16(m_units, _mm_set1_epi16(u'"'));
        const __m128i backslashes = _mm_cmpeq_epi16(m_units, _mm_set1_epi16(u'\\'));
        return bits(_mm_or_si128(_mm_or_si128(quotes, backslashes), atMost(m_units, /*highest=*/0x1F)));
    }
    unsigned surrogates() const
    {
        const __m128i high = _mm_and_si128(m_units, _mm_set1_epi16(static_cast<short>(0xF800)));
        return bits(_mm_cmpeq_epi16(high, _mm_set1_epi16(static_cast<short>(0xD800))));
    }

private:
    static __m128i atMost(__m128i units, short highest)
    {
        return _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(highest)), _mm_setzero_si128());
    }
    static unsigned bits(__m128i units) { return static_cast<unsigned>(_mm_movemask_epi8(units)); }

    __m128i m_units;
};

/// The first unit that a test of eight holds for, or one near enough to the end to go on singly.
template<auto Test>
inline const char16_t *firstByEights(const char16_t *c, const char16_t *end)
{
    for (; end - c >= Eight::size; c += Eight::size)
        if (const unsigned found = (Eight(c).*Test)())
            return c + std::countr_zero(found) / 2;
    return c;
}
#endif

inline const char16_t *afterSpaces(const char16_t *c, [[maybe_unused]] const char16_t *end)
{
    if (!isSpace(*c) || !isSpace(*++c))
        return c;
#ifdef __SSE2__
    c = firstByEights<&Eight::notSpaces>(c, end);
#endif
    while (isSpace(*c))
        ++c;
    return c;
}

inline const char16_t *afterDigits(const char16_t *c, [[maybe_unused]] const char16_t *end)
{
#ifdef __SSE2__
    c = firstByEights<&Eight::notDigits>(c, end);
#endif
    while (isDigit(*c))
        ++c;
    return c;
}

/// The end of a run of string text; tells whether there are surrogates in the run.
inline const char16_t *afterRun(const char16_t *c, [[maybe_unused]] const char16_t *end, bool &surrogates)
{
    unsigned seen = 0;
#ifdef __SSE2__
    for (; end - c >= Eight::size; c += Eight::size) {
        const Eight units(c);
        const unsigned stops = units.stops();
        if (stops) {
            surrogates = (seen | (units.surrogates() & (stops ^ (stops - 1)))) != 0;
            return c + std::countr_zero(stops) / 2;
        }
        seen |= units.surrogates();
    }
#endif
    for (; !isStop(*c); ++c)
        seen |= isSurrogate(*c);
    surrogates = seen != 0;
    return c;
}

/// Whether every surrogate of the text belongs to a pair, that is, whether the text has a UTF-8 form.
inline bool isPaired(const char16_t *c, const char16_t *end)
{
    for (; c != end; ++c) {
        if (!isSurrogate(*c))
            continue;
        if (*c >= 0xDC00 || c + 1 == end || (c[1] & 0xFC00) != 0xDC00)
            return false;
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
