#include "XKJsonOutput.h"

#include <algorithm>

void XKJsonOutput::putEscaped(const char16_t *units, std::size_t length)
{
    constexpr std::size_t longestEscape = 6;
    const char16_t *const end = units + length;
    reserve(length);
    while (units != end) {
#ifdef __SSE2__
        if (end - units >= XKJsonText::Eight::size) {
            const XKJsonText::Eight eight(units);
            const unsigned stops = eight.stops();
            const qptrdiff plain =
                stops ? XKJsonText::firstOf(stops, units) - units : XKJsonText::Eight::size;
            eight.store(m_next);
            m_next += plain;
            units += plain;
            if (!stops)
                continue;
        }
#endif
        if (!XKJsonText::isStop(*units)) {
            put(*units++);
            continue;
        }
        reserve(longestEscape + static_cast<std::size_t>(end - units));
        putEscape(*units++);
    }
}

void XKJsonOutput::putEscape(char16_t unit)
{
    static constexpr char shortEscapes[] = "\"\"\\\\\bb\tt\nn\ff\rr";
    put(u'\\');
    for (const char *escape = shortEscapes; *escape; escape += 2)
        if (unit == static_cast<unsigned char>(*escape))
            return put(static_cast<unsigned char>(escape[1]));
    static constexpr char digits[] = "0123456789abcdef";
    for (const char digit : {'u', '0', '0', digits[unit >> 4], digits[unit & 0xF]})
        put(static_cast<unsigned char>(digit));
}

QString XKJsonOutput::take()
{
    m_text.resize(m_next - begin());
    if (m_text.capacity() > m_text.size() + m_text.size() / 8)
        m_text.squeeze();
    return std::move(m_text);
}

void XKJsonOutput::grow(std::size_t units)
{
    const qsizetype used = m_next - begin();
    m_text.resize(std::max(2 * m_text.size(), used + static_cast<qsizetype>(units)));
    m_next = begin() + used;
    m_limit = begin() + m_text.size();
}
