#include "XKJsonWriter.h"

#include "XKJsonContainer.h"
#include "XKJsonObject.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;
using Code = XKJsonErrorCode;

/// What a container holds, wherever it lives.
struct XKJsonWriter::Items
{
    explicit Items(const XKJsonNode &container) : isDictionary(container.kind() == XKJsonKind::Dictionary)
    {
        static_assert(std::is_standard_layout_v<XKJsonValue>); // a value begins with its node
        if (container.is(XKJsonNode::Editable)) {
            const XKJsonContainer &editable = *container.container;
            itemSize = sizeof(XKJsonValue);
            count = editable.count();
            first = count ? &editable.node(0) : nullptr;
        } else {
            count = container.length();
            first = container.items;
        }
    }
    /// Of a dictionary the keys have even places, and each value is at the next one.
    const XKJsonNode &at(std::size_t place) const { return *after(first, place); }
    const XKJsonNode *after(const XKJsonNode *item, std::size_t places) const
    {
        return reinterpret_cast<const XKJsonNode *>(reinterpret_cast<const std::byte *>(item) +
                                                    places * itemSize);
    }

    bool isDictionary;
    std::size_t itemSize = sizeof(XKJsonNode); // in bytes
    std::size_t count = 0;                     // elements or members
    const XKJsonNode *first = nullptr;
};

namespace {

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

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendArray(const XKJsonNode &array, XKJsonOutput &into,
                                                             char16_t *&end)
{
    if (!enterContainer())
        return Step::Failed;
    m_frames.push_back({&array, 0});
    into.reserve(end, /*units=*/1);
    *end++ = u'[';
    return Step::Opened;
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendDictionary(const XKJsonNode &dictionary,
                                                                  XKJsonOutput &into, char16_t *&end)
{
    if (!enterContainer())
        return Step::Failed;
    m_frames.push_back({&dictionary, 0});
    if (m_isSorting)
        pushSortedKeys(Items(dictionary));
    into.reserve(end, /*units=*/1);
    *end++ = u'{';
    return Step::Opened;
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendString(const XKJsonNode &string, XKJsonOutput &into,
                                                              char16_t *&end)
{
    const std::size_t length = string.length();
    into.reserve(end, length + 2);
    *end++ = u'"';
    if (string.is(XKJsonNode::Plain)) {
        end = XKJsonOutput::put(end, string.text, length);
    } else {
        end = into.putEscaped(end, string.text, length);
        into.reserve(end, /*units=*/1);
    }
    *end++ = u'"';
    return Step::Appended;
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendValue(const XKJsonNode &value, XKJsonOutput &into,
                                                             char16_t *&end)
{
    switch (value.kind()) {
    case XKJsonKind::Dictionary:
        return appendDictionary(value, into, end);
    case XKJsonKind::Array:
        return appendArray(value, into, end);
    case XKJsonKind::String:
        return appendString(value, into, end);
    case XKJsonKind::Boolean:
        into.reserve(end, /*units=*/5);
        end = value.boolean ? XKJsonOutput::put(end, u"true") : XKJsonOutput::put(end, u"false");
        return Step::Appended;
    case XKJsonKind::Integer:
        into.reserve(end, /*units=*/20);
        end = XKJsonOutput::putInteger(end, value.integer);
        return Step::Appended;
    case XKJsonKind::Decimal:
        if (!value.is(XKJsonNode::Plain) && std::isinf(value.view().toDouble()))
            return refuse(u"Infinity is not a valid number in JSON"_s);
        into.reserve(end, value.length());
        end = XKJsonOutput::put(end, value.text, value.length());
        return Step::Appended;
    case XKJsonKind::Double:
        return appendDouble(value.real, into, end);
    case XKJsonKind::Null:
        into.reserve(end, /*units=*/4);
        end = XKJsonOutput::put(end, u"null");
        return Step::Appended;
    case XKJsonKind::Object: {
        into.commit(end);
        const Step step = appendObject(*value.object, into);
        end = into.end();
        return step;
    }
    case XKJsonKind::None:
        break;
    }
    return refuseClass(u"(null)"_s);
}

XKJsonWriter::Step XKJsonWriter::appendDouble(double real, XKJsonOutput &into, char16_t *&end)
{
    if (std::isnan(real))
        return refuse(u"NaN is not a valid number in JSON"_s);
    if (std::isinf(real))
        return refuse(u"Infinity is not a valid number in JSON"_s);
    std::array<char, 32> digits; // the shortest form takes 24 at most
    const char *const digitsEnd = std::to_chars(digits.data(), digits.data() + digits.size(), real).ptr;
    into.reserve(end, digits.size());
    end = std::copy(std::as_const(digits).data(), digitsEnd, end);
    return Step::Appended;
}

// A chain of objects, each the proxy of the one before, is followed in a loop, whatever its length. What
// becomes of a proxy does not count: only an object that offers none is a failure.
XKJsonWriter::Step XKJsonWriter::appendObject(const XKJsonObject &object, XKJsonOutput &into)
{
    std::optional<XKJsonValue> proxy = object.proxyForJson();
    if (!proxy)
        return refuseClass(object.className());
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
    if (appendAnyValue(m_proxies.back().second.m_node, into) == Step::Opened) {
        m_proxyFrames.push_back({m_frames.size() - 1, chain});
        return Step::Opened;
    }
    leaveProxies(chain);
    return Step::Appended;
}

void XKJsonWriter::pushSortedKeys(const Items &members)
{
    const std::size_t before = m_sorted.size();
    for (std::size_t i = 0; i < members.count; ++i)
        m_sorted.push_back(&members.at(2 * i));
    std::sort(m_sorted.begin() + static_cast<std::ptrdiff_t>(before), m_sorted.end(), comesBefore);
}

inline const XKJsonNode &XKJsonWriter::keyAt(const Items &members, std::size_t index) const
{
    return m_isSorting ? *m_sorted[m_sorted.size() - members.count + index] : members.at(2 * index);
}

inline void XKJsonWriter::leave()
{
    if (m_isSorting) {
        const Items items(*m_frames.back().container);
        m_sorted.resize(m_sorted.size() - (items.isDictionary ? items.count : 0));
    }
    m_frames.pop_back();
    if (!m_proxyFrames.empty() && m_proxyFrames.back().frame == m_frames.size()) {
        leaveProxies(m_proxyFrames.back().chain);
        m_proxyFrames.pop_back();
    }
}

inline void XKJsonWriter::close(char16_t bracket, XKJsonOutput &into, char16_t *&end)
{
    leaveContainer();
    const std::size_t spaces = spacesOfIndent();
    into.reserve(end, spaces + 2);
    if (m_humanReadable && m_frames.back().done > 0)
        end = XKJsonOutput::putLine(end, spaces);
    *end++ = bracket;
    leave();
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendMember(const XKJsonNode &key, const XKJsonNode &value,
                                                              XKJsonOutput &into, char16_t *&end)
{
    if (key.kind() != XKJsonKind::String)
        return refuse(u"JSON object key must be string"_s);
    appendString(key, into, end);
    into.reserve(end, /*units=*/3);
    end = m_humanReadable ? XKJsonOutput::put(end, u" : ") : XKJsonOutput::put(end, u":");
    const Step step = appendValue(value, into, end);
    if (step == Step::Failed)
        refuseMember(key);
    return step;
}

Q_ALWAYS_INLINE void XKJsonWriter::appendSeparator(bool isFirst, XKJsonOutput &into, char16_t *&end)
{
    const std::size_t spaces = spacesOfIndent();
    into.reserve(end, spaces + 2);
    if (!isFirst)
        *end++ = u',';
    if (m_humanReadable)
        end = XKJsonOutput::putLine(end, spaces);
}

XKJsonWriter::Step XKJsonWriter::appendElements(XKJsonOutput &into)
{
    Frame &frame = m_frames.back();
    const Items elements(*frame.container);
    char16_t *end = into.end();
    Step step = Step::Appended;
    while (step == Step::Appended && frame.done < elements.count) {
        appendSeparator(frame.done == 0, into, end);
        const XKJsonNode &element = elements.at(frame.done++);
        step = appendValue(element, into, end); // which may move the frame, if it opens another
    }
    if (step == Step::Appended)
        close(u']', into, end);
    into.commit(end);
    return step;
}

XKJsonWriter::Step XKJsonWriter::appendMembers(XKJsonOutput &into)
{
    Frame &frame = m_frames.back();
    const Items members(*frame.container);
    char16_t *end = into.end();
    Step step = Step::Appended;
    while (step == Step::Appended && frame.done < members.count) {
        appendSeparator(frame.done == 0, into, end);
        const XKJsonNode &key = keyAt(members, frame.done++);
        step = appendMember(key, *members.after(&key, /*places=*/1), into, end);
    }
    if (step == Step::Appended)
        close(u'}', into, end);
    into.commit(end);
    return step;
}

// After a failure in the innermost open container: gives up all containers out to the one that a proxy led
// to, itself included. False if there is none.
bool XKJsonWriter::goOnBehindProxy()
{
    for (;;) {
        const bool isOfProxy = !m_proxyFrames.empty() && m_proxyFrames.back().frame + 1 == m_frames.size();
        leave();
        if (isOfProxy)
            return true;
        if (m_frames.empty())
            return false;
        const Items items(*m_frames.back().container);
        if (items.isDictionary)
            refuseMember(keyAt(items, m_frames.back().done - 1));
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

XKJsonWriter::Step XKJsonWriter::refuse(const QString &description)
{
    addErrorWithCode(Code::Unsupported, description);
    return Step::Failed;
}

XKJsonWriter::Step XKJsonWriter::refuseClass(const QString &className)
{
    return refuse("JSON serialisation not supported for %1"_L1.arg(className));
}

void XKJsonWriter::refuseMember(const XKJsonNode &key)
{
    refuse("Unsupported value for key %1 in object"_L1.arg(key.view()));
}

QString XKJsonWriter::indent() const
{
    return u'\n' + QString(static_cast<qsizetype>(spacesOfIndent()), u' ');
}

XKJsonWriter::Step XKJsonWriter::appendAnyValue(const XKJsonNode &value, XKJsonOutput &into)
{
    char16_t *end = into.end();
    const Step step = appendValue(value, into, end);
    into.commit(end);
    return step;
}

QString XKJsonWriter::textOf(const XKJsonValue &container)
{
    XKJsonOutput output;
    resetDepth();
    m_frames.clear();
    m_sorted.clear();
    m_proxyFrames.clear();
    m_isSorting = m_sortKeys;
    if (appendAnyValue(container.m_node, output) == Step::Failed || !appendOpenContainers(output))
        return {};
    return output.take();
}

bool XKJsonWriter::appendOpenContainers(XKJsonOutput &into)
{
    while (!m_frames.empty()) {
        const bool isDictionary = m_frames.back().container->kind() == XKJsonKind::Dictionary;
        const Step step = isDictionary ? appendMembers(into) : appendElements(into);
        if (step == Step::Failed && !goOnBehindProxy())
            return false;
    }
    return true;
}
