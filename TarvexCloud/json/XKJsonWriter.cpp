#include "XKJsonWriter.h"

#include "XKJsonContainer.h"
#include "XKJsonObject.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;
using Code = XKJsonErrorCode;

namespace {

const XKJsonNode *after(const XKJsonNode *item, std::size_t bytes)
{
    return reinterpret_cast<const XKJsonNode *>(reinterpret_cast<const std::byte *>(item) + bytes);
}

// Keys that are no strings come first: the sooner the writing ends at them.
bool comesBefore(const XKJsonNode *key, const XKJsonNode *other)
{
    const bool isString = key->kind() == XKJsonKind::String;
    if (!isString || other->kind() != XKJsonKind::String)
        return !isString && other->kind() == XKJsonKind::String;
    return key->view().compare(other->view()) < 0;
}

} // namespace

QString XKJsonWriter::stringWithObject(const XKJsonValue &object, XKJsonError *error)
{
    XKJsonValue value = object;
    QString text;
    std::size_t calls = 1; // each proxy at the top is a call of its own, and each call that fails says so
    for (;; ++calls) {
        clearErrorTrace();
        if (value.isContainer()) {
            text = textOf(value);
            break;
        }
        const XKJsonObject *const offering = value.toObject();
        const std::optional<XKJsonValue> proxy = offering ? offering->proxyForJson() : std::nullopt;
        if (!proxy || !enterProxy(*offering, *proxy))
            break;
        value = *proxy;
    }
    leaveProxies(m_proxies.size());
    for (; text.isNull() && calls > 0; --calls)
        addErrorWithCode(Code::Fragment, u"Not valid type for JSON"_s);
    if (error && text.isNull())
        *error = lastError();
    return text;
}

inline XKJsonWriter::Step XKJsonWriter::appendValue(const XKJsonNode &value, XKJsonOutput &into)
{
    const auto stepOf = [](bool isDone, Step done) { return isDone ? done : Step::Failed; };
    switch (value.kind()) {
    case XKJsonKind::Dictionary:
        return stepOf(appendDictionary(value, into), Step::Opened);
    case XKJsonKind::Array:
        return stepOf(appendArray(value, into), Step::Opened);
    case XKJsonKind::String:
        appendString(value, into);
        return Step::Appended;
    case XKJsonKind::Boolean:
        appendWord(value.boolean ? "true"_L1 : "false"_L1, into);
        return Step::Appended;
    case XKJsonKind::Integer:
        appendInteger(value.integer, into);
        return Step::Appended;
    case XKJsonKind::Decimal:
        return stepOf(appendDecimal(value, into), Step::Appended);
    case XKJsonKind::Double:
        return stepOf(appendDouble(value.real, into), Step::Appended);
    case XKJsonKind::Null:
        appendWord("null"_L1, into);
        return Step::Appended;
    case XKJsonKind::Object:
        return appendObject(*value.object, into);
    case XKJsonKind::None:
        break;
    }
    refuseClass(u"(null)"_s);
    return Step::Failed;
}

inline void XKJsonWriter::appendString(const XKJsonNode &string, XKJsonOutput &into)
{
    const std::size_t length = string.length();
    into.reserve(length + 2);
    into.put(u'"');
    if (string.is(XKJsonNode::Plain))
        into.put(string.text, length);
    else
        into.putEscaped(string.text, length);
    into.reserve(1);
    into.put(u'"');
}

inline void XKJsonWriter::appendWord(QLatin1StringView word, XKJsonOutput &into)
{
    into.reserve(static_cast<std::size_t>(word.size()));
    into.putAscii(word.begin(), word.end());
}

inline void XKJsonWriter::appendInteger(qint64 integer, XKJsonOutput &into)
{
    std::array<char, 20> digits;
    const auto [end, error] = std::to_chars(digits.begin(), digits.end(), integer);
    appendWord({digits.begin(), end}, into);
}

inline bool XKJsonWriter::appendDecimal(const XKJsonNode &decimal, XKJsonOutput &into)
{
    if (!decimal.is(XKJsonNode::Plain) && std::isinf(decimal.view().toDouble()))
        return refuse(u"Infinity is not a valid number in JSON"_s);
    into.reserve(decimal.length());
    into.put(decimal.text, decimal.length());
    return true;
}

bool XKJsonWriter::appendDouble(double real, XKJsonOutput &into)
{
    if (std::isnan(real))
        return refuse(u"NaN is not a valid number in JSON"_s);
    if (std::isinf(real))
        return refuse(u"Infinity is not a valid number in JSON"_s);
    std::array<char, 32> digits; // the shortest form takes 24 at most
    const auto [end, error] = std::to_chars(digits.begin(), digits.end(), real);
    appendWord({digits.begin(), end}, into);
    return true;
}

// A chain of objects, each the proxy of the one before, is followed in a loop, whatever its length. What
// becomes of a proxy does not count: only an object that offers none is a failure.
XKJsonWriter::Step XKJsonWriter::appendObject(const XKJsonObject &object, XKJsonOutput &into)
{
    std::optional<XKJsonValue> proxy = object.proxyForJson();
    if (!proxy) {
        refuseClass(object.className());
        return Step::Failed;
    }
    const std::size_t proxiesBefore = m_proxies.size();
    const XKJsonObject *offering = &object;
    while (proxy && enterProxy(*offering, *proxy)) {
        offering = proxy->toObject();
        if (!offering)
            return appendProxy(m_proxies.size() - proxiesBefore, into);
        proxy = offering->proxyForJson();
        if (!proxy)
            refuseClass(offering->className());
    }
    leaveProxies(m_proxies.size() - proxiesBefore);
    return Step::Appended;
}

XKJsonWriter::Step XKJsonWriter::appendProxy(std::size_t chain, XKJsonOutput &into)
{
    const XKJsonNode value = m_proxies.back().second.m_node;
    if (appendValue(value, into) == Step::Opened) {
        m_frames.back().proxies = chain;
        return Step::Opened;
    }
    leaveProxies(chain);
    return Step::Appended;
}

bool XKJsonWriter::appendArray(const XKJsonNode &array, XKJsonOutput &into)
{
    return open(array, u'[', into);
}

bool XKJsonWriter::appendDictionary(const XKJsonNode &dictionary, XKJsonOutput &into)
{
    if (!open(dictionary, u'{', into))
        return false;
    if (m_sortKeys) {
        Frame &frame = m_frames.back();
        for (; frame.next != frame.end; frame.next = after(frame.next, 2 * frame.itemSize))
            m_sorted.push_back(frame.next);
        std::sort(m_sorted.begin() + static_cast<std::ptrdiff_t>(frame.sortedBegin), m_sorted.end(),
                  comesBefore);
    }
    return true;
}

XKJsonWriter::Step XKJsonWriter::appendElements(XKJsonOutput &into)
{
    Frame &frame = m_frames.back();
    while (frame.next != frame.end) {
        appendSeparator(frame, into);
        const XKJsonNode &element = *frame.next;
        frame.next = after(frame.next, frame.itemSize);
        const Step step = appendValue(element, into);
        if (step != Step::Appended)
            return step; // the frame may have moved
    }
    close(u']', into);
    return Step::Appended;
}

XKJsonWriter::Step XKJsonWriter::appendMembers(XKJsonOutput &into)
{
    Frame &frame = m_frames.back();
    while (const XKJsonNode *const key = nextKey(frame)) {
        appendSeparator(frame, into);
        if (key->kind() != XKJsonKind::String) {
            refuse(u"JSON object key must be string"_s);
            return Step::Failed;
        }
        frame.key = key;
        appendString(*key, into);
        appendWord(m_humanReadable ? " : "_L1 : ":"_L1, into);
        const Step step = appendValue(*after(key, frame.itemSize), into);
        if (step == Step::Failed)
            refuseMember(*key);
        if (step != Step::Appended)
            return step; // the frame may have moved
    }
    close(u'}', into);
    return Step::Appended;
}

inline void XKJsonWriter::appendSeparator(Frame &frame, XKJsonOutput &into)
{
    into.reserve(1);
    if (!std::exchange(frame.isAtFirst, false))
        into.put(u',');
    if (m_humanReadable)
        into.putLine(spacesOfIndent());
}

bool XKJsonWriter::open(const XKJsonNode &container, char16_t bracket, XKJsonOutput &into)
{
    if (!enterContainer())
        return false;
    Frame frame;
    frame.isDictionary = container.kind() == XKJsonKind::Dictionary;
    frame.sortedBegin = frame.sortedNext = m_sorted.size();
    std::size_t items = 0;
    if (container.is(XKJsonNode::Editable)) {
        static_assert(std::is_standard_layout_v<XKJsonValue>); // a value begins with its node
        frame.itemSize = sizeof(XKJsonValue);
        items = container.container->items().size();
        frame.next = items ? &container.container->node(0) : nullptr;
    } else {
        frame.itemSize = sizeof(XKJsonNode);
        items = container.length() * (frame.isDictionary ? 2 : 1);
        frame.next = container.items;
    }
    frame.end = after(frame.next, items * frame.itemSize);
    m_frames.push_back(frame);
    into.reserve(1);
    into.put(bracket);
    return true;
}

inline void XKJsonWriter::close(char16_t bracket, XKJsonOutput &into)
{
    leaveContainer();
    if (m_humanReadable && !m_frames.back().isAtFirst)
        into.putLine(spacesOfIndent());
    into.reserve(1);
    into.put(bracket);
    leave();
}

inline void XKJsonWriter::leave()
{
    const Frame &frame = m_frames.back();
    if (frame.proxies > 0)
        leaveProxies(frame.proxies);
    m_sorted.resize(frame.sortedBegin);
    m_frames.pop_back();
}

inline const XKJsonNode *XKJsonWriter::nextKey(Frame &frame)
{
    if (m_sortKeys)
        return frame.sortedNext < m_sorted.size() ? m_sorted[frame.sortedNext++] : nullptr;
    const XKJsonNode *const key = frame.next;
    if (key == frame.end)
        return nullptr;
    frame.next = after(key, 2 * frame.itemSize);
    return key;
}

// After a failure in the innermost open container: gives up all containers out to the one that a proxy led
// to, itself included. False if there is none.
bool XKJsonWriter::goOnBehindProxy()
{
    for (;;) {
        const bool isOfProxy = m_frames.back().proxies > 0;
        leave();
        if (isOfProxy)
            return true;
        if (m_frames.empty())
            return false;
        if (m_frames.back().isDictionary)
            refuseMember(*m_frames.back().key);
    }
}

bool XKJsonWriter::enterProxy(const XKJsonObject &object, const XKJsonValue &proxy)
{
    constexpr std::size_t mostProxies = 10'000; // inside each other: objects made anew each time have no end
    if (m_proxies.size() == mostProxies || !m_proxied.insert(&object).second) {
        addErrorWithCode(Code::Depth, u"Nested too deep"_s);
        return false;
    }
    m_proxies.emplace_back(&object, proxy);
    return true;
}

void XKJsonWriter::leaveProxies(std::size_t count)
{
    for (; count > 0; --count) {
        m_proxied.erase(m_proxies.back().first);
        m_proxies.pop_back();
    }
}

bool XKJsonWriter::refuse(const QString &description)
{
    addErrorWithCode(Code::Unsupported, description);
    return false;
}

void XKJsonWriter::refuseClass(const QString &className)
{
    refuse("JSON serialisation not supported for %1"_L1.arg(className));
}

void XKJsonWriter::refuseMember(const XKJsonNode &key)
{
    refuse("Unsupported value for key %1 in object"_L1.arg(key.view()));
}

QString XKJsonWriter::indent() const
{
    return u'\n' + QString(static_cast<qsizetype>(spacesOfIndent()), u' ');
}

QString XKJsonWriter::textOf(const XKJsonValue &container)
{
    XKJsonOutput output;
    resetDepth();
    m_frames.clear();
    m_sorted.clear();
    if (appendValue(container.m_node, output) == Step::Failed || !appendOpenContainers(output))
        return {};
    return output.take();
}

bool XKJsonWriter::appendOpenContainers(XKJsonOutput &into)
{
    while (!m_frames.empty()) {
        const Step step = m_frames.back().isDictionary ? appendMembers(into) : appendElements(into);
        if (step == Step::Failed && !goOnBehindProxy())
            return false;
    }
    return true;
}
