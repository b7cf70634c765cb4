#include "XKJsonOutput.h"

#include "XKJsonPages.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::size_t longestEscape = 6;

char16_t *putEscape(char16_t *to, char16_t unit)
{
    static constexpr std::u16string_view shortEscapes = u"\"\"\\\\\bb\tt\nn\ff\rr";
    *to++ = u'\\';
    for (std::size_t i = 0; i < shortEscapes.size(); i += 2) {
        if (unit == shortEscapes[i]) {
            *to++ = shortEscapes[i + 1];
            return to;
        }
    }
    static constexpr char16_t digits[] = u"0123456789abcdef";
    for (const char16_t escaped : {u'u', u'0', u'0', digits[unit >> 4], digits[unit & 0xF]})
        *to++ = escaped;
    return to;
}

} // namespace

char16_t *XKJsonOutput::putEscaped(char16_t *to, const char16_t *units, std::size_t length)
{
    const char16_t *const unitsEnd = units + length;
    reserve(to, length + longestEscape);
    while (units != unitsEnd) {
#ifdef __SSE2__
        if (unitsEnd - units >= XKJsonText::eight) {
            const XKJsonText::Eight next(units);
            const unsigned stops = next.stops();
            next.store(to);
            const char16_t *const plain =
                stops ? XKJsonText::firstOf(stops, units) : units + XKJsonText::eight;
            to += plain - units;
            units = plain;
            if (!stops)
                continue;
        }
#endif
        if (!XKJsonText::isStop(*units)) {
            *to++ = *units++;
            continue;
        }
        to = putEscape(to, *units++);
        reserve(to, longestEscape + static_cast<std::size_t>(unitsEnd - units));
    }
    return to;
}

QString XKJsonOutput::take()
{
    m_text.resize(m_end - begin());
    return std::move(m_text);
}

char16_t *XKJsonOutput::grow(char16_t *end, std::size_t units)
{
    const qsizetype used = end - begin();
    m_text.resize(std::max(m_text.size() + m_text.size() / 2, used + static_cast<qsizetype>(units)));
    m_text.resize(m_text.capacity());
    XKJsonPages::preferLarge(m_text.data(), static_cast<std::size_t>(m_text.size()) * sizeof(char16_t));
    m_limit = begin() + m_text.size();
    return begin() + used;
}
