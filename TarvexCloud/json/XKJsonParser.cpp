#include "XKJsonParser.h"

#include "XKJsonArena.h"
#include "XKJsonMembers.h"
#include "XKJsonNumberText.h"

using namespace Qt::StringLiterals;
using Code = XKJsonErrorCode;

XKJsonValue XKJsonParser::objectWithString(const QString &text, XKJsonError *error)
{
    clearErrorTrace();
    XKJsonValue tree;
    if (!scanText(text, tree)) {
        tree = XKJsonValue();
        if (error)
            *error = lastError();
    }
    return tree;
}

bool XKJsonParser::scanText(const QString &text, XKJsonValue &tree)
{
    if (text.isNull())
        return refuse(Code::NoInput, "Input was 'nil'");
    m_arena = XKJsonArena::make(text);
    tree.m_owner = m_arena;
    m_c = reinterpret_cast<const char16_t *>(m_arena->text().constData());
    m_limit = XKJsonText::Limit(m_c, m_arena->text().size());
    m_stack.shrinkTo(/*size=*/0);
    m_open = noContainer;
    m_shapes.clear();
    resetDepth();
    if (!scanDocument()) {
        addErrorsOfOpenContainers();
        return false;
    }
    const bool isAtEnd = scanIsAtEnd();
    tree.m_node = m_stack[0]; // not at once, since a copy would wait for the stores of its two halves
    Q_ASSERT_X(!tree.isNone(), "objectWithString",
               qPrintable("Should have a valid object from %1"_L1.arg(text)));
    if (!isAtEnd)
        return refuse(Code::TrailingGarbage, "Garbage after JSON");
    return tree.isContainer() || refuse(Code::Fragment, "Valid fragment, but not JSON");
}

Q_ALWAYS_INLINE void XKJsonParser::skipSpaces(const char16_t *&c)
{
    c = XKJsonText::afterSpaces(c, m_limit, m_indent);
}

template<std::size_t size>
Q_ALWAYS_INLINE bool XKJsonParser::scanLiteral(const char16_t *&c, const char16_t (&rest)[size])
{
    for (std::size_t i = 0; i < size - 1; ++i) // a zero unit at the text's end differs before it is passed
        if (c[i] != rest[i])
            return false;
    c += size - 1;
    return true;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfTrue(const char16_t *&c, XKJsonNode &value)
{
    value = XKJsonNode(XKJsonKind::Boolean);
    value.boolean = true;
    return scanLiteral(c, u"rue") || refuse(Code::Parse, "Expected 'true'");
}

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfFalse(const char16_t *&c, XKJsonNode &value)
{
    value = XKJsonNode(XKJsonKind::Boolean);
    value.boolean = false;
    return scanLiteral(c, u"alse") || refuse(Code::Parse, "Expected 'false'");
}

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfNull(const char16_t *&c, XKJsonNode &value)
{
    value = XKJsonNode(XKJsonKind::Null);
    return scanLiteral(c, u"ull") || refuse(Code::Parse, "Expected 'null'");
}

Q_ALWAYS_INLINE bool XKJsonParser::scanNumber(const char16_t *&c, XKJsonNode &number)
{
    using Fault = XKJsonNumberText::Fault;
    const char16_t *const start = c;
    const XKJsonNumberText text = XKJsonNumberText::read(start, m_limit);
    c = text.end;
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

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfString(const char16_t *&c, XKJsonNode &string)
{
    const char16_t *const start = c;
    bool surrogates = false;
    const char16_t *const end = XKJsonText::afterRun(start, m_limit, surrogates);
    if (*end != u'"' || (surrogates && !XKJsonText::isPaired(start, end))) {
        m_c = start;
        const bool isScanned = scanRestOfStringWithEscapes(end, surrogates, string);
        c = m_c;
        return isScanned;
    }
    string = XKJsonNode(XKJsonKind::String, start, static_cast<std::size_t>(end - start), XKJsonNode::Plain);
    c = end + 1;
    return true;
}

inline XKJsonParser::Step XKJsonParser::open(XKJsonKind kind)
{
    if (!enterContainer())
        return Step::Failed;
    XKJsonNode &container = m_stack.next();
    container = XKJsonNode(kind);
    container.openedIn = m_open;
    m_open = m_stack.size();
    m_stack.keep();
    if (kind == XKJsonKind::Dictionary)
        foreseeMembers();
    return Step::Opened;
}

// What is foreseen of a dictionary stands in front of its members. The elements of an array are mostly alike;
// for other dictionaries the first key will tell.
inline void XKJsonParser::foreseeMembers()
{
    XKJsonNode &foreseen = m_stack.next();
    const bool isBehindAnother = m_open > 0 && m_stack[m_open - 1].kind() == XKJsonKind::Dictionary;
    foreseen = isBehindAnother ? XKJsonForeseen::membersLikeThoseOf(m_stack[m_open - 1]) : XKJsonNode();
    m_stack.keep();
}

inline void XKJsonParser::close(const XKJsonNode &container)
{
    leaveContainer();
    const std::size_t openedIn = m_stack[m_open].openedIn;
    m_stack[m_open] = container;
    m_stack.shrinkTo(m_open + 1);
    m_open = openedIn;
}

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanValue(const char16_t *&c)
{
    skipSpaces(c);
    XKJsonNode &value = m_stack.next();
    bool isScanned = false;
    switch (*c++) {
        [[likely]] case u'"' : isScanned = scanRestOfString(c, value);
        break;
    case u'+':
        return fail(Code::Number, "Leading + disallowed in number");
    // clang-format off
    case u'-':
    case u'0': case u'1': case u'2': case u'3': case u'4':
    case u'5': case u'6': case u'7': case u'8': case u'9':
        // clang-format on
        --c;
        isScanned = scanNumber(c, value);
        break;
    case u'[':
        return open(XKJsonKind::Array);
    case u'{':
        return open(XKJsonKind::Dictionary);
    case u't':
        isScanned = scanRestOfTrue(c, value);
        break;
    case u'f':
        isScanned = scanRestOfFalse(c, value);
        break;
    case u'n':
        isScanned = scanRestOfNull(c, value);
        break;
    case u'\0':
        return fail(Code::EndOfInput, "Unexpected end of string");
    default:
        return fail(Code::Parse, "Unrecognised leading character");
    }
    if (!isScanned)
        return Step::Failed;
    m_stack.keep();
    return Step::Scanned;
}

// Passes a comma, if there is one, and all spaces around it.
Q_ALWAYS_INLINE bool XKJsonParser::scanComma(const char16_t *&c)
{
    skipSpaces(c);
    if (*c != u',')
        return false;
    ++c;
    skipSpaces(c);
    return true;
}

// The key becomes a node of the stack. Passing one that was foreseen does not wait for its end to be found.
Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfKey(const char16_t *&c)
{
    XKJsonNode &key = m_stack.next();
    XKJsonNode &foreseen = m_stack[m_open + 1];
    if (const std::size_t length = XKJsonForeseen::lengthOfNext(foreseen, c, m_limit)) {
        key.head = foreseen.items->head;
        key.text = std::exchange(c, c + length);
        XKJsonForeseen::pass(foreseen, /*members=*/1);
    } else {
        if (!scanRestOfString(c, key))
            return false;
        if (m_stack.size() == firstMember())
            foreseen = m_shapes.foreseenFrom(key);
        XKJsonForeseen::passUnexpected(foreseen, key);
    }
    m_stack.keep();
    return true;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanKey(const char16_t *&c)
{
    if (*c != u'"')
        return refuse(Code::Parse, "Object key string expected");
    ++c;
    if (!scanRestOfKey(c))
        return refuse(Code::Parse, "Object key string expected");
    skipSpaces(c);
    if (*c != u':')
        return refuse(Code::Parse, "Expected ':' separating key and value");
    ++c;
    return true;
}

inline void XKJsonParser::closeArray()
{
    const std::size_t count = m_stack.size() - (m_open + 1);
    const XKJsonNode *const elements = m_stack.moveTo(*m_arena, m_open + 1);
    close(XKJsonNode(XKJsonKind::Array, elements, count, XKJsonNode::NoFlag));
}

inline void XKJsonParser::closeDictionary()
{
    const std::size_t count = (m_stack.size() - firstMember()) / 2;
    if (count >= XKJsonMembers::indexedFrom) {
        XKJsonNode *const members = m_stack.moveTo(*m_arena, firstMember(), /*inFront=*/1);
        close(XKJsonMembers::indexedDictionaryOf(members, count, *m_arena));
        return;
    }
    const bool mayRepeat = !m_stack[m_open + 1].is(XKJsonNode::Distinct);
    const XKJsonNode dictionary =
        XKJsonMembers::dictionaryOf(&m_stack[m_open] + 2, count, *m_arena, mayRepeat);
    if (mayRepeat)
        m_shapes.remember(dictionary);
    close(dictionary);
}

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanToElement(const char16_t *&c, bool isAfterValue)
{
    const bool isAfterComma = isAfterValue && scanComma(c);
    if (*c == u'\0')
        return fail(Code::EndOfInput, "End of input while parsing array");
    if (!isAfterValue)
        skipSpaces(c);
    if (*c != u']')
        return Step::Awaited;
    if (isAfterComma)
        return fail(Code::TrailingComma, "Trailing comma disallowed in array");
    ++c;
    closeArray();
    return Step::Scanned;
}

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanToMember(const char16_t *&c, bool isAfterValue)
{
    const bool isAfterComma = isAfterValue && scanComma(c);
    if (*c != u'"') {
        if (*c == u'\0')
            return fail(Code::EndOfInput, "End of input while parsing object");
        if (!isAfterValue)
            skipSpaces(c);
        if (*c == u'}') {
            if (isAfterComma)
                return fail(Code::TrailingComma, "Trailing comma disallowed in object");
            ++c;
            closeDictionary();
            return Step::Scanned;
        }
    }
    return scanKey(c) ? Step::Awaited : Step::Failed;
}

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanToValue(const char16_t *&c, bool isAfterValue)
{
    m_stack.makeRoom();
    return m_stack[m_open].kind() == XKJsonKind::Array ? scanToElement(c, isAfterValue)
                                                       : scanToMember(c, isAfterValue);
}

// All values are read at one place, whatever they stand in: so all this makes one loop, which is faster by a
// tenth than a function for each kind of container.
bool XKJsonParser::scanDocument()
{
    const char16_t *c = m_c;
    Step step = Step::Awaited;
    while (step == Step::Awaited) {
        step = scanValue(c);
        if (step == Step::Failed && m_open != noContainer)
            addErrorOfValue(m_stack.size());
        while ((step == Step::Scanned || step == Step::Opened) && m_open != noContainer)
            step = scanToValue(c, step == Step::Scanned);
    }
    m_c = c;
    return step == Step::Scanned;
}

bool XKJsonParser::scanIsAtEnd()
{
    skipSpaces(m_c);
    return *m_c == u'\0';
}

// The innermost open container has told its error already; each one around it could not read its value.
void XKJsonParser::addErrorsOfOpenContainers()
{
    while (m_open != noContainer && m_stack[m_open].openedIn != noContainer) {
        const std::size_t inner = std::exchange(m_open, m_stack[m_open].openedIn);
        addErrorOfValue(inner);
    }
}

void XKJsonParser::addErrorOfValue(std::size_t place)
{
    if (m_stack[m_open].kind() == XKJsonKind::Array)
        refuse(Code::Parse, "Expected value while parsing array");
    else
        addErrorOfMember(place - 1);
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
