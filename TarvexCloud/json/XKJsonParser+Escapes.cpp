#include "XKJsonArena.h"
#include "XKJsonParser.h"
#include "XKJsonText.h"

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

} // namespace

// Reads a string that is more than one run of text: the cursor stands behind its opening quotation mark,
// `end` where the first run ends.
bool XKJsonParser::scanRestOfStringWithEscapes(const char16_t *end, bool mayHaveSurrogates,
                                               XKJsonNode &string)
{
    std::size_t length = 0;
    for (;; end = XKJsonText::afterRun(m_c, m_limit, mayHaveSurrogates)) {
        if (mayHaveSurrogates && !XKJsonText::isPaired(m_c, end))
            return refuse(Code::Unicode, "Broken unicode character");
        const auto run = static_cast<std::size_t>(end - m_c);
        // Copying may overwrite seven units behind the run, of which the escape takes one.
        const std::size_t needed = length + run + XKJsonText::eight;
        if (m_unescaped.size() < needed)
            m_unescaped.resize(std::max(needed, 2 * m_unescaped.size()));
        XKJsonText::copyRun(m_unescaped.data() + length, m_c, end, m_limit);
        length += run;
        m_c = end;
        if (*m_c == u'"')
            break;
        if (*m_c != u'\\')
            return refuseUnit(Code::ControlCharacter, "Unescaped control character '0x%1'", *m_c);
        ++m_c;
        if (!scanEscape(m_unescaped[length++]))
            return false;
        if (*m_c == u'\0')
            return refuse(Code::EndOfInput, "Unexpected EOF while parsing string");
    }
    ++m_c;
    auto *const text = static_cast<char16_t *>(m_arena->allocate(length * sizeof(char16_t)));
    std::copy_n(m_unescaped.data(), length, text);
    string = XKJsonNode(XKJsonKind::String, text, length, XKJsonNode::NoFlag);
    return true;
}

bool XKJsonParser::scanEscape(char16_t &unit)
{
    unit = *m_c;
    switch (unit) {
    case u'"':
    case u'\\':
    case u'/':
        break;
    case u'b':
        unit = u'\b';
        break;
    case u'f':
        unit = u'\f';
        break;
    case u'n':
        unit = u'\n';
        break;
    case u'r':
        unit = u'\r';
        break;
    case u't':
        unit = u'\t';
        break;
    case u'u':
        ++m_c;
        return scanUnicodeChar(unit) || refuse(Code::Unicode, "Broken unicode character");
    default:
        return refuseUnit(Code::Escape, "Illegal escape sequence '0x%1'", XKJsonText::firstByte(m_c));
    }
    ++m_c;
    return true;
}

bool XKJsonParser::scanUnicodeChar(char16_t &unit)
{
    if (!scanHexQuad(unit))
        return refuse(Code::Unicode, "Missing hex quad");
    if (!XKJsonText::isSurrogate(unit))
        return true;
    if (unit >= 0xDC00)
        return refuse(Code::Unicode, "Invalid high character in surrogate pair");
    return scanLowSurrogate(unit);
}

// A pair of escapes is folded into one unit, so no character beyond the first plane comes out of it: texts
// with such escapes have always been read so.
bool XKJsonParser::scanLowSurrogate(char16_t &unit)
{
    char16_t low = 0;
    const bool isEscape = *m_c == u'\\' && m_c[1] == u'u';
    m_c += isEscape ? 2 : 0;
    if (!isEscape || !scanHexQuad(low))
        return refuse(Code::Unicode, "Missing low character in surrogate pair");
    constexpr char16_t firstLow = 0xDC00;
    constexpr char16_t lastAccepted = 0xDFFE;
    if (low < firstLow || low > lastAccepted)
        return refuse(Code::Unicode, "Invalid low surrogate char");
    unit = static_cast<char16_t>((unit << 10) + (low - firstLow));
    return true;
}

bool XKJsonParser::scanHexQuad(char16_t &quad)
{
    quad = 0;
    for (int i = 0; i < 4; ++i, ++m_c) {
        const int digit = hexDigit(*m_c);
        if (digit < 0)
            return refuse(Code::Unicode, "Missing hex digit in quad");
        quad = static_cast<char16_t>(quad << 4 | digit);
    }
    return true;
}

bool XKJsonParser::refuseUnit(XKJsonErrorCode code, const char *description, unsigned value)
{
    addErrorWithCode(code, QLatin1StringView(description).arg(QString::number(value, /*base=*/16)));
    return false;
}
