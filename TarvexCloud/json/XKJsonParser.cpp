#include "XKJsonParser.h"

#include "NSString+XKJSON.h"
#include "XKJsonMembers.h"
#include "XKJsonMemory.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using Code = XKJsonErrorCode;

namespace {

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

XKJsonValue NSString_XKJSON::JSONValue(const QString &text)
{
    XKJsonParser parser;
    XKJsonValue value = parser.objectWithString(text);
    if (value.isNone())
        qCWarning(xkJson).noquote() << "-JSONValue failed. Error trace is:" << parser.errorTraceDescription();
    return value;
}

XKJsonValue XKJsonParser::objectWithString(const QString &text, XKJsonError *error)
{
    clearErrorTrace();
    XKJsonValue tree;
    if (scanText(text, tree))
        return tree;
    if (error)
        *error = lastError();
    return {};
}

bool XKJsonParser::scanText(const QString &text, XKJsonValue &tree)
{
    if (text.isNull())
        return refuse(Code::NoInput, "Input was 'nil'");
    m_arena = new XKJsonArena(text);
    tree.m_owner = m_arena;
    m_nodes.clear();
    m_open.clear();
    resetDepth();
    XKJsonCursor c(m_arena->text());
    if (!scanDocument(c)) {
        addErrorsOfOpenContainers();
        return false;
    }
    c.passSpaces();
    if (!c.isAtEnd())
        return refuse(Code::TrailingGarbage, "Garbage after JSON");
    tree.m_node = m_nodes.last();
    Q_ASSERT_X(!tree.isNone(), "objectWithString",
               qPrintable("Should have a valid object from %1"_L1.arg(text)));
    return tree.isContainer() || refuse(Code::Fragment, "Valid fragment, but not JSON");
}

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfString(XKJsonCursor &c)
{
    const QStringView run = c.takeRun();
    if (c.passIf(u'"')) {
        m_nodes.append(XKJsonNode(XKJsonKind::String, run));
        return true;
    }
    XKJsonCursor lent = c; // so that the other one stays in registers
    const bool isScanned = scanRestOfStringWithEscapes(lent, run);
    c = lent;
    return isScanned;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanNumber(XKJsonCursor &c)
{
    const char16_t *const start = c.place();
    const XKJsonNumber number = c.takeNumber();
    if (number.fault)
        return refuse(Code::Number, number.fault);
    m_nodes.append(number.isInteger ? XKJsonNode(XKJsonKind::Integer, number.integer)
                                    : XKJsonNode(XKJsonKind::Decimal, c.textFrom(start)));
    return true;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfWord(XKJsonCursor &c, QStringView rest, const XKJsonNode &value,
                                                  const char *expectation)
{
    if (!c.passIf(rest))
        return refuse(Code::Parse, expectation);
    m_nodes.append(value);
    return true;
}

inline bool XKJsonParser::open(XKJsonKind kind)
{
    if (!enterContainer())
        return false;
    m_open.append({kind, m_nodes.size()});
    return true;
}

// Moves what the innermost container holds from the stack to the arena.
inline void XKJsonParser::close()
{
    leaveContainer();
    const auto [kind, first] = m_open.last();
    m_open.removeLast();
    const auto count = static_cast<std::size_t>(m_nodes.size() - first);
    const bool isDictionary = kind == XKJsonKind::Dictionary;
    const std::size_t indexBytes = isDictionary ? XKJsonMembers::indexBytes(count / 2) : 0;
    void *const memory = m_arena->allocate(indexBytes + count * sizeof(XKJsonNode));
    auto *const items = reinterpret_cast<XKJsonNode *>(static_cast<std::byte *>(memory) + indexBytes);
    std::copy_n(m_nodes.constData() + first, count, items);
    m_nodes.resize(first);
    m_nodes.append(XKJsonNode(kind, items, isDictionary ? XKJsonMembers::index(items, count / 2) : count));
}

Q_ALWAYS_INLINE bool XKJsonParser::scanValue(XKJsonCursor &c)
{
    c.passSpaces();
    const char16_t unit = *c;
    if (unit == u'-' || XKJsonScan::isDigit(unit))
        return scanNumber(c);
    c.pass();
    switch (unit) {
    case u'"':
        return scanRestOfString(c);
    case u'+':
        return refuse(Code::Number, "Leading + disallowed in number");
    case u'[':
        return open(XKJsonKind::Array);
    case u'{':
        return open(XKJsonKind::Dictionary);
    case u't':
        return scanRestOfWord(c, u"rue", XKJsonNode(XKJsonKind::Boolean, /*number=*/1), "Expected 'true'");
    case u'f':
        return scanRestOfWord(c, u"alse", XKJsonNode(XKJsonKind::Boolean, /*number=*/0), "Expected 'false'");
    case u'n':
        return scanRestOfWord(c, u"ull", XKJsonNode(XKJsonKind::Null), "Expected 'null'");
    case u'\0':
        return refuse(Code::EndOfInput, "Unexpected end of string");
    default:
        return refuse(Code::Parse, "Unrecognised leading character");
    }
}

Q_ALWAYS_INLINE bool XKJsonParser::scanKey(XKJsonCursor &c)
{
    if (!c.passIf(u'"') || !scanRestOfString(c))
        return refuse(Code::Parse, "Object key string expected");
    c.passSpaces();
    return c.passIf(u':') || refuse(Code::Parse, "Expected ':' separating key and value");
}

Q_ALWAYS_INLINE bool XKJsonParser::scanItem(XKJsonCursor &c)
{
    const Open &container = m_open.last();
    const bool isDictionary = container.kind == XKJsonKind::Dictionary;
    bool isAfterComma = false;
    if (m_nodes.size() > container.first) { // behind a value
        c.passSpaces();
        isAfterComma = c.passIf(u',');
    }
    if (isAfterComma)
        c.passSpaces();
    if (c.isAtEnd())
        return refuseContainer(Code::EndOfInput, isDictionary ? "End of input while parsing object"
                                                              : "End of input while parsing array");
    c.passSpaces();
    if (!c.passIf(isDictionary ? u'}' : u']'))
        return isDictionary && !scanKey(c) ? abandonContainer() : scanValue(c);
    if (isAfterComma)
        return refuseContainer(Code::TrailingComma, isDictionary ? "Trailing comma disallowed in object"
                                                                 : "Trailing comma disallowed in array");
    close();
    return true;
}

// A container's values are read one after the other, whatever they stand in: nesting costs no machine stack.
bool XKJsonParser::scanDocument(XKJsonCursor &cursor)
{
    XKJsonCursor c = cursor; // stays in registers
    bool isScanned = scanValue(c);
    while (isScanned && !m_open.isEmpty())
        isScanned = scanItem(c);
    cursor = c;
    return isScanned;
}

// Apart, so that it does not crowd out what most strings need.
Q_NEVER_INLINE bool XKJsonParser::scanRestOfStringWithEscapes(XKJsonCursor &c, QStringView run)
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
    if (!scanHexQuad(c, unit))
        return refuse(Code::Unicode, "Missing hex quad");
    if (XKJsonScan::isLowSurrogate(unit))
        return refuse(Code::Unicode, "Invalid high character in surrogate pair");
    if (!XKJsonScan::isHighSurrogate(unit))
        return true;
    char16_t low = 0;
    if (!c.passIf(u"\\u") || !scanHexQuad(c, low))
        return refuse(Code::Unicode, "Missing low character in surrogate pair");
    if (!XKJsonScan::isLowSurrogate(low) || low == 0xDFFF)
        return refuse(Code::Unicode, "Invalid low surrogate char");
    unit = static_cast<char16_t>((unit << 10) + (low - 0xDC00));
    return true;
}

bool XKJsonParser::scanHexQuad(XKJsonCursor &c, char16_t &quad)
{
    quad = 0;
    for (int i = 0; i < 4; ++i) {
        const qsizetype digit = QStringView(u"0123456789abcdefABCDEF").indexOf(QChar(*c));
        if (digit < 0)
            return refuse(Code::Unicode, "Missing hex digit in quad");
        quad = static_cast<char16_t>(quad << 4 | (digit < 16 ? digit : digit - 6));
        c.pass();
    }
    return true;
}

bool XKJsonParser::refuseUnit(XKJsonErrorCode code, const char *description, unsigned value)
{
    return refuse(code, QLatin1StringView(description).arg(QString::number(value, /*base=*/16)));
}

bool XKJsonParser::refuseContainer(XKJsonErrorCode code, const char *description)
{
    refuse(code, description);
    return abandonContainer();
}

// The innermost container has told its error: from now on it is itself the value that could not be read.
bool XKJsonParser::abandonContainer()
{
    m_nodes.resize(m_open.last().first);
    m_open.removeLast();
    return false;
}

// A value could not be read: each container that it stands in tells so, from the innermost outwards.
void XKJsonParser::addErrorsOfOpenContainers()
{
    for (; !m_open.isEmpty(); abandonContainer()) {
        if (m_open.last().kind == XKJsonKind::Array)
            refuse(Code::Parse, "Expected value while parsing array");
        else
            refuse(Code::Parse, "Object value expected for key: %1"_L1.arg(m_nodes.last().view()));
    }
}
