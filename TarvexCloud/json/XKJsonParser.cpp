#include "XKJsonParser.h"

#include "NSString+XKJSON.h"
#include "XKJsonMembers.h"
#include "XKJsonMemory.h"

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
            addErrorWithCode(Code::Parse, "Object value expected for key: %1"_L1.arg(m_nodes.last().view()));
    }
}
