#include "XKJsonParser.h"

#include "NSString+XKJSON.h"
#include "XKJsonMembers.h"
#include "XKJsonMemory.h"

#include <cstring>

using namespace Qt::StringLiterals;
using Code = XKJsonErrorCode;

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
    m_nodes.clear();
    m_open.clear();
    resetDepth();
    XKJsonCursor c{QStringView(m_arena->text())};
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

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanRestOfWord(XKJsonCursor &c, QStringView rest,
                                                                const XKJsonNode &value,
                                                                const char *expectation)
{
    if (!c.passIf(rest))
        return fail(Code::Parse, expectation);
    m_nodes.append(value);
    return Step::Scanned;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanNumber(XKJsonCursor &c)
{
    const char16_t *const start = c.place();
    const XKJsonNumber number = c.takeNumber();
    if (number.fault)
        return refuse(Code::Number, number.fault);
    if (number.isInteger)
        m_nodes.append(XKJsonNode(XKJsonKind::Integer, number.integer));
    else
        m_nodes.append(XKJsonNode(XKJsonKind::Decimal, c.textFrom(start)));
    return true;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanRestOfString(XKJsonCursor &c)
{
    const char16_t *const start = c.place();
    if (!c.passRun() || *c != u'"') {
        XKJsonCursor again = c; // lent in place of the other, which stays in registers
        again.moveTo(start);
        const bool isScanned = scanRestOfStringWithEscapes(again);
        c = again;
        return isScanned;
    }
    m_nodes.append(XKJsonNode(XKJsonKind::String, c.textFrom(start), /*isPlain=*/true));
    c.pass();
    return true;
}

inline XKJsonParser::Step XKJsonParser::open(XKJsonKind kind)
{
    if (!enterContainer())
        return Step::Failed;
    m_open.append({kind, m_nodes.size()});
    return Step::Opened;
}

inline void XKJsonParser::dropNodes(qsizetype from)
{
    while (m_nodes.size() > from)
        m_nodes.removeLast();
}

// Moves what the innermost container holds from the stack to the arena.
inline void XKJsonParser::close()
{
    leaveContainer();
    const auto [kind, first] = m_open.last();
    m_open.removeLast();
    const bool isDictionary = kind == XKJsonKind::Dictionary;
    const auto count = static_cast<std::size_t>(m_nodes.size() - first);
    const std::size_t indexBytes = isDictionary ? XKJsonMembers::indexBytes(count / 2) : 0;
    auto *const memory = static_cast<std::byte *>(m_arena->allocate(indexBytes + count * sizeof(XKJsonNode)));
    auto *const items = reinterpret_cast<XKJsonNode *>(memory + indexBytes);
    std::copy_n(m_nodes.constData() + first, count, items);
    dropNodes(first);
    m_nodes.append(XKJsonNode(kind, items, isDictionary ? XKJsonMembers::index(items, count / 2) : count));
}

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanValue(XKJsonCursor &c)
{
    c.passSpaces();
    const char16_t unit = *c;
    if (unit == u'-' || XKJsonScan::isDigit(unit))
        return scanNumber(c) ? Step::Scanned : Step::Failed;
    c.pass();
    switch (unit) {
    case u'"':
        return scanRestOfString(c) ? Step::Scanned : Step::Failed;
    case u'+':
        return fail(Code::Number, "Leading + disallowed in number");
    case u'[':
        return open(XKJsonKind::Array);
    case u'{':
        return open(XKJsonKind::Dictionary);
    case u't':
        return scanRestOfWord(c, u"rue", XKJsonNode(XKJsonKind::Boolean, 1), "Expected 'true'");
    case u'f':
        return scanRestOfWord(c, u"alse", XKJsonNode(XKJsonKind::Boolean, 0), "Expected 'false'");
    case u'n':
        return scanRestOfWord(c, u"ull", XKJsonNode(XKJsonKind::Null), "Expected 'null'");
    case u'\0':
        return fail(Code::EndOfInput, "Unexpected end of string");
    default:
        return fail(Code::Parse, "Unrecognised leading character");
    }
}

// Passes a comma, if there is one, and all spaces around it.
Q_ALWAYS_INLINE bool XKJsonParser::scanComma(XKJsonCursor &c)
{
    c.passSpaces();
    if (!c.passIf(u','))
        return false;
    c.passSpaces();
    return true;
}

Q_ALWAYS_INLINE bool XKJsonParser::scanKey(XKJsonCursor &c)
{
    if (!c.passIf(u'"') || !scanRestOfString(c))
        return refuse(Code::Parse, "Object key string expected");
    c.passSpaces();
    return c.passIf(u':') || refuse(Code::Parse, "Expected ':' separating key and value");
}

Q_ALWAYS_INLINE XKJsonParser::Step XKJsonParser::scanToValue(XKJsonCursor &c, bool isAfterValue)
{
    const bool isDictionary = m_open.last().kind == XKJsonKind::Dictionary;
    const bool isAfterComma = isAfterValue && scanComma(c);
    if (c.isAtEnd())
        return failContainer(Code::EndOfInput, isDictionary ? "End of input while parsing object"
                                                            : "End of input while parsing array");
    c.passSpaces();
    if (!c.passIf(isDictionary ? u'}' : u']'))
        return !isDictionary || scanKey(c) ? Step::Awaited : abandonContainer();
    if (isAfterComma)
        return failContainer(Code::TrailingComma, isDictionary ? "Trailing comma disallowed in object"
                                                               : "Trailing comma disallowed in array");
    close();
    return Step::Scanned;
}

// All values are read at one place, whatever they stand in, so that nesting costs no machine stack.
bool XKJsonParser::scanDocument(XKJsonCursor &cursor)
{
    XKJsonCursor c = cursor; // stays in registers
    Step step = Step::Awaited;
    while (step == Step::Awaited) {
        step = scanValue(c);
        while ((step == Step::Scanned || step == Step::Opened) && !m_open.isEmpty())
            step = scanToValue(c, step == Step::Scanned);
    }
    cursor = c;
    return step == Step::Scanned;
}

// A value could not be read: each container that it stands in tells so, from the innermost outwards.
void XKJsonParser::addErrorsOfOpenContainers()
{
    for (; !m_open.isEmpty(); m_open.removeLast()) {
        if (m_open.last().kind == XKJsonKind::Array)
            refuse(Code::Parse, "Expected value while parsing array");
        else
            addErrorWithCode(Code::Parse, "Object value expected for key: %1"_L1.arg(m_nodes.last().view()));
        dropNodes(m_open.last().first);
    }
}

bool XKJsonParser::refuse(XKJsonErrorCode code, const char *description)
{
    addErrorWithCode(code, QString::fromLatin1(description));
    return false;
}

XKJsonParser::Step XKJsonParser::fail(XKJsonErrorCode code, const char *description)
{
    refuse(code, description);
    return Step::Failed;
}

XKJsonParser::Step XKJsonParser::failContainer(XKJsonErrorCode code, const char *description)
{
    refuse(code, description);
    return abandonContainer();
}

// The innermost container has told its error: from now on it is itself the value that could not be read.
XKJsonParser::Step XKJsonParser::abandonContainer()
{
    dropNodes(m_open.last().first);
    m_open.removeLast();
    return Step::Failed;
}
