#pragma once

#include <bit>
#include <QtGlobal>

#if defined(__SSE2__) && !defined(XKJSON_PLAIN)
#include <emmintrin.h>
#endif

/// How far a kind of unit reaches in UTF-16 text. Each function takes the cursor, which stands before a unit
/// of another kind, and the end of the places where eight units can be read.
///
/// A loop over single units says what is meant. In front of it stands one over eight units at a time, which
/// stops no later; a build with XKJSON_PLAIN does without.
namespace XKJsonScan {

constexpr qptrdiff eight = 8;

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

/// The end of the places in a text where eight units can be read.
constexpr const char16_t *endOfEights(const char16_t *text, const char16_t *end)
{
    return end - text < eight ? text : end - (eight - 1);
}

#if defined(__SSE2__) && !defined(XKJSON_PLAIN)
using Eight = __m128i;

inline Eight eightAt(const char16_t *c)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(c));
}

inline Eight equal(Eight units, int unit)
{
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
}

/// Which of the units are between two, these included.
inline Eight between(Eight units, int least, int most)
{
    const Eight above = _mm_sub_epi16(units, _mm_set1_epi16(static_cast<short>(least)));
    return equal(_mm_subs_epu16(above, _mm_set1_epi16(static_cast<short>(most - least))), 0);
}

inline Eight blanks(Eight units)
{
    return equal(units, u' ');
}

inline Eight digits(Eight units)
{
    return between(units, u'0', u'9');
}

inline Eight stops(Eight units)
{
    // Flipping the bit that parts a quote from a blank puts it next to the control characters.
    const Eight flipped = _mm_xor_si128(units, _mm_set1_epi16(u'"' ^ u' '));
    return _mm_or_si128(between(flipped, 0, 0x20), equal(units, u'\\'));
}

inline Eight surrogates(Eight units)
{
    return equal(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xF800))), 0xD800);
}

/// Two bits for each unit found, as it has two bytes; the first unit has the lowest.
inline unsigned bitsOf(Eight found)
{
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}

inline const char16_t *firstOf(unsigned bits, const char16_t *c)
{
    return c + static_cast<unsigned>(std::countr_zero(bits)) / 2;
}

template<auto Kind>
const char16_t *afterEightsOf(const char16_t *c, const char16_t *eightsEnd)
{
    for (; c < eightsEnd; c += eight)
        if (const unsigned others = bitsOf(Kind(eightAt(c))) ^ 0xFFFF)
            return firstOf(others, c);
    return c;
}
#endif

inline const char16_t *afterSpaces(const char16_t *c, [[maybe_unused]] const char16_t *eightsEnd)
{
    while (isSpace(*c)) {
        ++c;
#if defined(__SSE2__) && !defined(XKJSON_PLAIN)
        c = afterEightsOf<blanks>(c, eightsEnd); // most are
#endif
    }
    return c;
}

inline const char16_t *afterDigits(const char16_t *c, [[maybe_unused]] const char16_t *eightsEnd)
{
#if defined(__SSE2__) && !defined(XKJSON_PLAIN)
    c = afterEightsOf<digits>(c, eightsEnd);
#endif
    while (isDigit(*c))
        ++c;
    return c;
}

/// The end of a run of string text. Also tells whether there may be surrogates in it; there are none
/// otherwise.
inline const char16_t *afterRun(const char16_t *c, [[maybe_unused]] const char16_t *eightsEnd,
                                bool &mayHaveSurrogates)
{
    mayHaveSurrogates = false;
#if defined(__SSE2__) && !defined(XKJSON_PLAIN)
    Eight found = _mm_setzero_si128();
    for (; c < eightsEnd; c += eight) {
        const Eight units = eightAt(c);
        found = _mm_or_si128(found, surrogates(units));
        if (const unsigned ends = bitsOf(stops(units))) {
            mayHaveSurrogates = bitsOf(found) != 0;
            return firstOf(ends, c);
        }
    }
    mayHaveSurrogates = bitsOf(found) != 0;
#endif
    for (; !isStop(*c); ++c)
        mayHaveSurrogates |= isSurrogate(*c);
    return c;
}

/// Copies text up to its end or to a unit that must be escaped. There must be room for all of it.
inline void copyRun(const char16_t *&c, const char16_t *end, char16_t *&to)
{
#if defined(__SSE2__) && !defined(XKJSON_PLAIN)
    for (unsigned ends = 0; end - c >= eight && !ends;) {
        const Eight units = eightAt(c);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to), units);
        ends = bitsOf(stops(units));
        const qptrdiff copied = ends ? firstOf(ends, c) - c : eight;
        c += copied;
        to += copied;
    }
#endif
    while (c != end && !isStop(*c))
        *to++ = *c++;
}

} // namespace XKJsonScan
