#include "XKJsonParser.h"

#include "XKJsonArena.h"
#include "XKJsonMembers.h"
#include "XKJsonNumberText.h"

using namespace Qt::StringLiterals;
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

XKJsonValue XKJsonParser::objectWithString(const QString &text, XKJsonError *error)
{
    clearErrorTrace();
    XKJsonValue tree;
    if (text.isNull())
        refuse(Code::NoInput, "Input was 'nil'");
    else
        tree = treeOf(text);
    if (error && tree.isNone())
        *error = lastError();
    return tree;
}

XKJsonValue XKJsonParser::treeOf(const QString &text)
{
    m_arena = XKJsonArena::make(text);
    XKJsonValue tree(XKJsonNode(), m_arena);
    m_c = reinterpret_cast<const char16_t *>(m_arena->text().constData());
    m_end = m_c + m_arena->text().size();
    m_stack.shrinkTo(/*size=*/0);
    m_open = noContainer;
    resetDepth();
    if (!scanDocument()) {
        addErrorsOfOpenContainers();
        return {};
    }
    tree.m_node = m_stack[0];
    Q_ASSERT_X(!tree.isNone(), "objectWithString",
               qPrintable("Should have a valid object from %1"_L1.arg(text)));
    if (!scanIsAtEnd()) {
        refuse(Code::TrailingGarbage, "Garbage after JSON");
        return {};
    }
    if (!tree.isContainer()) {
        refuse(Code::Fragment, "Valid fragment, but not JSON");
        return {};
    }
    return tree;
}

bool XKJsonParser::scanDocument()
{
    Step step = scanValue();
    while (step != Step::Failed && m_open != noContainer) {
        const bool isAfterValue = step == Step::Scanned;
        step = m_stack[m_open].kind() == XKJsonKind::Array ? scanRestOfArray(isAfterValue)
                                                           : scanRestOfDictionary(isAfterValue);
    }
    return step != Step::Failed;
}

inline XKJsonParser::Step XKJsonParser::scanValue()
{
    skipSpaces();
    XKJsonNode value;
    bool isScanned = false;
    switch (*m_c++) {
    case u'"':
        isScanned = scanRestOfString(value);
        break;
    case u'+':
        return fail(Code::Number, "Leading + disallowed in number");
    case u'-':
    case u'0':
    case u'1':
    case u'2':
    case u'3':
    case u'4': // clang-format off
    case u'5': case u'6': case u'7': case u'8': case u'9': // clang-format on
        --m_c;
        isScanned = scanNumber(value);
        break;
    case u'[':
        return open(XKJsonKind::Array);
    case u'{':
        return open(XKJsonKind::Dictionary);
    case u't':
        isScanned = scanRestOfTrue(value);
        break;
    case u'f':
        isScanned = scanRestOfFalse(value);
        break;
    case u'n':
        isScanned = scanRestOfNull(value);
        break;
    case u'\0':
        return fail(Code::EndOfInput, "Unexpected end of string");
    default:
        return fail(Code::Parse, "Unrecognised leading character");
    }
    if (!isScanned)
        return Step::Failed;
    m_stack.push(value);
    return Step::Scanned;
}

bool XKJsonParser::scanRestOfTrue(XKJsonNode &value)
{
    value = XKJsonNode(XKJsonKind::Boolean);
    value.boolean = true;
    return scanLiteral(u"rue") || refuse(Code::Parse, "Expected 'true'");
}

bool XKJsonParser::scanRestOfFalse(XKJsonNode &value)
{
    value = XKJsonNode(XKJsonKind::Boolean);
    value.boolean = false;
    return scanLiteral(u"alse") || refuse(Code::Parse, "Expected 'false'");
}

bool XKJsonParser::scanRestOfNull(XKJsonNode &value)
{
    value = XKJsonNode(XKJsonKind::Null);
    return scanLiteral(u"ull") || refuse(Code::Parse, "Expected 'null'");
}

XKJsonParser::Step XKJsonParser::scanRestOfArray(bool isAfterValue)
{
    for (;;) {
        if (isAfterValue) {
            skipSpaces();
            if (*m_c == u',') {
                ++m_c;
                skipSpaces();
                if (*m_c == u']')
                    return fail(Code::TrailingComma, "Trailing comma disallowed in array");
            }
        }
        if (*m_c == u'\0')
            return fail(Code::EndOfInput, "End of input while parsing array");
        skipSpaces();
        if (*m_c == u']') {
            ++m_c;
            const std::size_t count = m_stack.size() - (m_open + 1);
            const XKJsonNode *const elements = m_arena->copy(&m_stack[m_open] + 1, count);
            close(XKJsonNode(XKJsonKind::Array, elements, count, XKJsonNode::NoFlag));
            return Step::Scanned;
        }
        const Step step = scanValue();
        if (step == Step::Failed)
            refuse(Code::Parse, "Expected value while parsing array");
        if (step != Step::Scanned)
            return step;
        isAfterValue = true;
    }
}

XKJsonParser::Step XKJsonParser::scanRestOfDictionary(bool isAfterValue)
{
    for (;;) {
        if (isAfterValue) {
            skipSpaces();
            if (*m_c == u',') {
                ++m_c;
                skipSpaces();
                if (*m_c == u'}')
                    return fail(Code::TrailingComma, "Trailing comma disallowed in object");
            }
        }
        if (*m_c == u'\0')
            return fail(Code::EndOfInput, "End of input while parsing object");
        skipSpaces();
        if (*m_c == u'}') {
            ++m_c;
            const std::size_t count = (m_stack.size() - (m_open + 1)) / 2;
            close(XKJsonMembers::dictionaryOf(&m_stack[m_open] + 1, count, *m_arena));
            return Step::Scanned;
        }
        if (!scanKey())
            return Step::Failed;
        const Step step = scanValue();
        if (step == Step::Failed)
            addErrorOfMember(m_stack.size() - 1);
        if (step != Step::Scanned)
            return step;
        isAfterValue = true;
    }
}

inline bool XKJsonParser::scanKey()
{
    if (*m_c != u'"')
        return refuse(Code::Parse, "Object key string expected");
    ++m_c;
    XKJsonNode key;
    if (!scanRestOfString(key))
        return refuse(Code::Parse, "Object key string expected");
    m_stack.push(key);
    skipSpaces();
    if (*m_c != u':')
        return refuse(Code::Parse, "Expected ':' separating key and value");
    ++m_c;
    return true;
}

inline bool XKJsonParser::scanRestOfString(XKJsonNode &string)
{
    const char16_t *const start = m_c;
    bool surrogates = false;
    const char16_t *const end = XKJsonText::afterRun(start, m_end, surrogates);
    if (*end != u'"' || (surrogates && !XKJsonText::isPaired(start, end)))
        return scanRestOfStringWithEscapes(string);
    string = XKJsonNode(XKJsonKind::String, start, static_cast<std::size_t>(end - start), XKJsonNode::Plain);
    m_c = end + 1;
    return true;
}

bool XKJsonParser::scanRestOfStringWithEscapes(XKJsonNode &string)
{
    m_unescaped.clear();
    for (;;) {
        bool surrogates = false;
        const char16_t *const end = XKJsonText::afterRun(m_c, m_end, surrogates);
        if (surrogates && !XKJsonText::isPaired(m_c, end))
            return refuse(Code::Unicode, "Broken unicode character");
        m_unescaped.append(m_c, end);
        m_c = end;
        if (*m_c == u'"')
            break;
        if (*m_c != u'\\')
            return refuseUnit(Code::ControlCharacter, "Unescaped control character '0x%1'", *m_c);
        ++m_c;
        if (!scanEscape())
            return false;
        if (*m_c == u'\0')
            return refuse(Code::EndOfInput, "Unexpected EOF while parsing string");
    }
    ++m_c;
    const std::size_t length = m_unescaped.size();
    auto *const text = static_cast<char16_t *>(m_arena->allocate(length * sizeof(char16_t)));
    m_unescaped.copy(text, length);
    string = XKJsonNode(XKJsonKind::String, text, length, XKJsonNode::NoFlag);
    return true;
}

bool XKJsonParser::scanEscape()
{
    char16_t unit = *m_c;
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
        if (!scanUnicodeChar(unit))
            return refuse(Code::Unicode, "Broken unicode character");
        m_unescaped += unit;
        return true;
    default:
        return refuseUnit(Code::Escape, "Illegal escape sequence '0x%1'", XKJsonText::firstByte(m_c));
    }
    m_unescaped += unit;
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

// A pair makes one unit, never a character beyond the first plane: the codec has always read it so.
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

inline bool XKJsonParser::scanNumber(XKJsonNode &number)
{
    using Fault = XKJsonNumberText::Fault;
    const char16_t *const start = m_c;
    const XKJsonNumberText text = XKJsonNumberText::read(start, m_end);
    m_c = text.end;
    switch (text.fault) {
    case Fault::LeadingZero:
        return refuse(Code::Number, "Leading 0 disallowed in number");
    case Fault::NothingAfterMinus:
        return refuse(Code::Number, "No digits after initial minus");
    case Fault::NothingAfterPoint:
        return refuse(Code::Number, "No digits after decimal point");
    case Fault::NothingAfterExponent:
        return refuse(Code::Number, "No digits after exponent");
    case Fault::None:
        break;
    }
    if (text.isInteger) {
        number = XKJsonNode(XKJsonKind::Integer);
        number.integer = text.integer;
        return true;
    }
    if (!text.exponentFits)
        return refuse(Code::Number, "Failed creating decimal instance");
    const auto length = static_cast<std::size_t>(text.end - start);
    const bool isPlain = !text.hasExponent && length < XKJsonNode::longestPlainNumber;
    number = XKJsonNode(XKJsonKind::Decimal, start, length, isPlain ? XKJsonNode::Plain : XKJsonNode::NoFlag);
    return true;
}

bool XKJsonParser::scanIsAtEnd()
{
    skipSpaces();
    return *m_c == u'\0';
}

inline bool XKJsonParser::scanLiteral(std::u16string_view rest)
{
    const bool isThere = static_cast<std::size_t>(m_end - m_c) >= rest.size() &&
                         std::memcmp(m_c, rest.data(), rest.size() * sizeof(char16_t)) == 0;
    m_c += isThere ? rest.size() : 0;
    return isThere;
}

inline XKJsonParser::Step XKJsonParser::open(XKJsonKind kind)
{
    if (!enterContainer())
        return Step::Failed;
    XKJsonNode container(kind);
    container.openedIn = m_open;
    m_open = m_stack.size();
    m_stack.push(container);
    return Step::Opened;
}

inline void XKJsonParser::close(const XKJsonNode &container)
{
    leaveContainer();
    const std::size_t openedIn = m_stack[m_open].openedIn;
    m_stack[m_open] = container;
    m_stack.shrinkTo(m_open + 1);
    m_open = openedIn;
}

inline void XKJsonParser::skipSpaces()
{
    m_c = XKJsonText::afterSpaces(m_c, m_end);
}

// The innermost open container has told its error already; each one around it could not read its value.
void XKJsonParser::addErrorsOfOpenContainers()
{
    while (m_open != noContainer && m_stack[m_open].openedIn != noContainer) {
        const std::size_t inner = std::exchange(m_open, m_stack[m_open].openedIn);
        if (m_stack[m_open].kind() == XKJsonKind::Array)
            refuse(Code::Parse, "Expected value while parsing array");
        else
            addErrorOfMember(inner - 1);
    }
}

void XKJsonParser::addErrorOfMember(std::size_t keyPlace)
{
    addErrorWithCode(Code::Parse, "Object value expected for key: %1"_L1.arg(m_stack[keyPlace].view()));
}

bool XKJsonParser::refuse(XKJsonErrorCode code, const char *description)
{
    addErrorWithCode(code, QString::fromLatin1(description));
    return false;
}

bool XKJsonParser::refuseUnit(XKJsonErrorCode code, const char *description, unsigned value)
{
    addErrorWithCode(code, QLatin1StringView(description).arg(QString::number(value, /*base=*/16)));
    return false;
}
