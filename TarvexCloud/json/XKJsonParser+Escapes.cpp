#include "XKJsonMemory.h"
#include "XKJsonParser.h"

#include <algorithm>

using Code = XKJsonErrorCode;

namespace {

constexpr int hexDigit(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    return unit >= u'a' && unit <= u'f' ? unit - u'a' + 10 : -1;
}

/// The first byte of the UTF-8 form of the character at the cursor.
unsigned firstByte(const char16_t *c)
{
    const unsigned unit = *c;
    if (unit < 0x80)
        return unit;
    if (unit < 0x800)
        return 0xC0 | unit >> 6;
    if (XKJsonScan::isHighSurrogate(c[0]) && XKJsonScan::isLowSurrogate(c[1]))
        return 0xF0 | (((unit & 0x3FF) + 0x40) >> 8);
    return 0xE0 | unit >> 12;
}

} // namespace

bool XKJsonParser::scanRestOfStringWithEscapes(XKJsonCursor &c, QStringView run)
{
    m_unescaped.assign(run.utf16(), static_cast<std::size_t>(run.size()));
    while (!c.passIf(u'"')) {
        if (XKJsonScan::isHighSurrogate(*c) ||
            XKJsonScan::isLowSurrogate(*c)) // half a pair in the text itself
            return refuse(Code::Unicode, "Broken unicode character");
        if (!c.passIf(u'\\'))
            return refuseUnit(Code::ControlCharacter, "Unescaped control character '0x%1'", *c);
        char16_t unit = 0;
        if (!scanEscape(c, unit))
            return false;
        m_unescaped += unit;
        if (c.isAtEnd())
            return refuse(Code::EndOfInput, "Unexpected EOF while parsing string");
        run = c.takeRun();
        m_unescaped.append(run.utf16(), static_cast<std::size_t>(run.size()));
    }
    const std::size_t length = m_unescaped.size();
    auto *const text = static_cast<char16_t *>(m_arena->allocate(length * sizeof(char16_t)));
    std::copy_n(m_unescaped.data(), length, text);
    m_nodes.append(XKJsonNode(XKJsonKind::String, QStringView(text, static_cast<qsizetype>(length))));
    return true;
}

bool XKJsonParser::scanEscape(XKJsonCursor &c, char16_t &unit)
{
    static constexpr QStringView letters = u"\"\\/bfnrt";
    static constexpr char16_t units[] = u"\"\\/\b\f\n\r\t";
    if (c.passIf(u'u'))
        return scanUnicodeChar(c, unit) || refuse(Code::Unicode, "Broken unicode character");
    const qsizetype found = letters.indexOf(QChar(*c));
    if (found < 0)
        return refuseUnit(Code::Escape, "Illegal escape sequence '0x%1'", firstByte(c.place()));
    unit = units[found];
    c.pass();
    return true;
}

// Folds a surrogate pair into one unit, so that no character beyond the first plane comes out of it.
bool XKJsonParser::scanUnicodeChar(XKJsonCursor &c, char16_t &unit)
{
    constexpr char16_t firstLow = 0xDC00;
    constexpr char16_t lastAccepted = 0xDFFE;
    if (!scanHexQuad(c, unit))
        return refuse(Code::Unicode, "Missing hex quad");
    if (XKJsonScan::isLowSurrogate(unit))
        return refuse(Code::Unicode, "Invalid high character in surrogate pair");
    if (!XKJsonScan::isHighSurrogate(unit))
        return true;
    char16_t low = 0;
    if (!c.passIf(u"\\u") || !scanHexQuad(c, low))
        return refuse(Code::Unicode, "Missing low character in surrogate pair");
    if (low < firstLow || low > lastAccepted)
        return refuse(Code::Unicode, "Invalid low surrogate char");
    unit = static_cast<char16_t>((unit << 10) + (low - firstLow));
    return true;
}

bool XKJsonParser::scanHexQuad(XKJsonCursor &c, char16_t &quad)
{
    quad = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = hexDigit(*c);
        if (digit < 0)
            return refuse(Code::Unicode, "Missing hex digit in quad");
        quad = static_cast<char16_t>(quad << 4 | digit);
        c.pass();
    }
    return true;
}
