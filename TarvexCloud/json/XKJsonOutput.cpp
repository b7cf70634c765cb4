#include "XKJsonOutput.h"

void XKJsonOutput::putEscaped(QStringView text)
{
    const char16_t *const end = text.utf16() + text.size();
    for (const char16_t *c = text.utf16(); c != end;) {
        const char16_t *const run = std::exchange(c, XKJsonScan::after(XKJsonScan::isPlain, c, end));
        put(QStringView(run, c));
        if (c != end)
            putEscape(*c++);
    }
}

void XKJsonOutput::putEscape(char16_t unit)
{
    static constexpr QStringView units = u"\"\\\b\t\n\f\r";
    static constexpr char16_t letters[] = u"\"\\btnfr";
    static constexpr char16_t digits[] = u"0123456789abcdef";
    const qsizetype found = units.indexOf(QChar(unit));
    put(u'\\');
    if (found >= 0)
        return put(letters[found]);
    put(u"u00");
    put(digits[unit >> 4]);
    put(digits[unit & 0xF]);
}

void XKJsonOutput::makeRoom(qsizetype units)
{
    const qsizetype before = used();
    m_text.reserve(std::max(m_text.size() + m_text.size() / 2, before + units));
    m_text.resize(m_text.capacity());
    auto *const begin = reinterpret_cast<char16_t *>(m_text.data());
    m_end = begin + before;
    m_limit = begin + m_text.size();
}
