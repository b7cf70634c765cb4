#pragma once

#include <algorithm>
#include <bit>
#include <cstring>
#include <QtGlobal>

/// How far units of one kind reach in UTF-16 text. What tells a kind takes one unit, or eight of them for as
/// many answers; compilers make vector instructions of these, where there are any.
namespace XKJsonScan {

using Eight = quint16 __attribute__((vector_size(16)));
using Four = quint16 __attribute__((vector_size(8)));
using Narrow = qint8 __attribute__((vector_size(8)));
static_assert(std::endian::native == std::endian::little, "countOf() counts from the lowest bit");

constexpr quint16 blank = u' ', quote = u'"', backslash = u'\\';
constexpr quint16 tab = u'\t', carriageReturn = u'\r', zero = u'0', nine = u'9';

constexpr auto isBlank = [](auto unit) { return unit == blank; };
constexpr auto isSpace = [](auto unit) { return isBlank(unit) | ((unit >= tab) & (unit <= carriageReturn)); };
constexpr auto isDigit = [](auto unit) { return (unit >= zero) & (unit <= nine); };
constexpr auto isHighSurrogate = [](auto unit) { return (unit & 0xFC00) == 0xD800; };
constexpr auto isLowSurrogate = [](auto unit) { return (unit & 0xFC00) == 0xDC00; };

/// Whether a unit needs no escape: no quote, backslash or control character, so no zero.
constexpr auto isPlain = [](auto unit) { return (unit >= blank) & (unit != quote) & (unit != backslash); };

/// The same, and no surrogate.
constexpr auto isText = [](auto unit) { return isPlain(unit) & ((unit & 0xF800) != 0xD800); };

template<typename Units>
Units unitsAt(const char16_t *c)
{
    Units units;
    std::memcpy(&units, c, sizeof(units));
    return units;
}

/// How many units of four or eight are of a kind before the first of another.
template<typename Answers>
qptrdiff countOf(Answers answers)
{
    if constexpr (sizeof(answers) == sizeof(Four))
        return std::countr_one(std::bit_cast<quint64>(answers)) / 16;
    else // narrowed to eight bits for each unit
        return std::countr_one(std::bit_cast<quint64>(__builtin_convertvector(answers, Narrow))) / 8;
}

/// The first unit of another kind, or the end.
template<typename Kind>
const char16_t *after(Kind isOfKind, const char16_t *c, const char16_t *end)
{
    for (; end - c >= 8; c += 8)
        if (const qptrdiff count = countOf(isOfKind(unitsAt<Eight>(c))); count < 8)
            return c + count;
    while (c != end && isOfKind(*c))
        ++c;
    return c;
}

/// Copies some units, at least one vector of them, and tells whether all are of a kind.
template<typename Units, typename Kind>
bool copyVectorsIf(Kind isOfKind, const char16_t *from, qsizetype count, char16_t *to)
{
    constexpr qsizetype step = sizeof(Units) / sizeof(char16_t);
    for (qsizetype i = 0;; i = std::min(i + step, count - step)) { // the last ones overlap those before
        const auto units = unitsAt<Units>(from + i);
        std::memcpy(to + i, &units, sizeof(units));
        if (countOf(isOfKind(units)) < step)
            return false;
        if (i == count - step)
            return true;
    }
}

/// Copies some units, and tells whether all of them are of a kind.
template<typename Kind>
bool copyIf(Kind isOfKind, const char16_t *from, qsizetype count, char16_t *to)
{
    if (count >= 8)
        return copyVectorsIf<Eight>(isOfKind, from, count, to);
    if (count >= 4)
        return copyVectorsIf<Four>(isOfKind, from, count, to);
    for (qsizetype i = 0; i < count; ++i)
        if (!isOfKind(to[i] = from[i]))
            return false;
    return true;
}

} // namespace XKJsonScan
