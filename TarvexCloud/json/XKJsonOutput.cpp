#include "XKJsonOutput.h"

#include "XKJsonMemory.h"
#include "XKJsonScan.h"

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

XKJsonOutput XKJsonOutput::withEscaped(XKJsonOutput output, QStringView text)
{
    const char16_t *c = text.utf16();
    for (const char16_t *const end = c + text.size(); c != end;) {
        output.reserve(static_cast<std::size_t>(end - c) + longestEscape);
        XKJsonScan::copyRun(c, end, output.m_end);
        if (c != end)
            output.m_end = putEscape(output.m_end, *c++);
    }
    return output;
}

XKJsonOutput XKJsonOutput::withRoom(XKJsonOutput output, std::size_t units)
{
    QString &text = *output.m_text;
    const qsizetype used = output.m_end ? output.size() : 0;
    text.resize(std::max(text.size() + text.size() / 2, used + static_cast<qsizetype>(units)));
    text.resize(text.capacity());
    preferLargePages(text.data(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
    auto *const begin = reinterpret_cast<char16_t *>(text.data());
    output.m_end = begin + used;
    output.m_limit = begin + text.size();
    return output;
}
