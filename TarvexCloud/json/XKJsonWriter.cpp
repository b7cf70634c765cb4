#include "XKJsonWriter.h"

#include "NSObject+XKJSON.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using Code = XKJsonErrorCode;

namespace {

// Keys that are no strings come first: the sooner the writing ends at them.
bool comesBefore(const XKJsonNode *key, const XKJsonNode *other)
{
    const bool isString = key->kind() == XKJsonKind::String;
    if (!isString || other->kind() != XKJsonKind::String)
        return !isString && other->kind() == XKJsonKind::String;
    return key->view().compare(other->view()) < 0;
}

std::unique_ptr<const XKJsonNode *[]> sortedKeysOf(const XKJsonNode &dictionary) {
    auto keys = std::make_unique<const XKJsonNode *[]>(dictionary.length());
    for (std::size_t i = 0; i < dictionary.length(); ++i)
        keys[i] = dictionary.items + 2 * i;
    std::sort(keys.get(), keys.get() + dictionary.length(), comesBefore);
    return keys;
}

bool isInfinite(QStringView decimal)
{
    constexpr qsizetype surelyFinite = 300; // so many digits are less than the largest double
    const auto isE = [](QChar unit) { return unit == u'e' || unit == u'E'; };
    if (decimal.size() < surelyFinite && std::none_of(decimal.begin(), decimal.end(), isE))
        return false;
    return std::isinf(decimal.toDouble());
}

} // namespace

QString NSObject_XKJSON::JSONRepresentation(const XKJsonValue &object)
{
    XKJsonWriter writer;
    QString text = writer.stringWithObject(object);
    if (text.isNull())
        qCWarning(xkJson).noquote() << "-JSONRepresentation failed. Error trace is:"
                                    << writer.errorTraceDescription();
    return text;
}

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
    m_frames.clear();
    m_proxies.clear();
    m_proxied.clear();
    for (; text.isNull() && calls > 0; --calls)
        addErrorWithCode(Code::Fragment, u"Not valid type for JSON"_s);
    if (error && text.isNull())
        *error = lastError();
    return text;
}

Q_ALWAYS_INLINE bool XKJsonWriter::appendContainer(const XKJsonNode &container, XKJsonOutput &into)
{
    if (!enterContainer())
        return false;
    const bool isDictionary = container.kind() == XKJsonKind::Dictionary;
    into.put(isDictionary ? u'{' : u'[');
    if (container.length() == 0) {
        leaveContainer();
        into.put(isDictionary ? u'}' : u']');
        return true;
    }
    m_frames.push_back({container, 0, m_sortKeys && isDictionary ? sortedKeysOf(container) : nullptr});
    return true;
}

Q_ALWAYS_INLINE bool XKJsonWriter::appendValue(const XKJsonNode &value, XKJsonOutput &into)
{
    switch (value.kind()) {
    case XKJsonKind::Dictionary:
    case XKJsonKind::Array:
        return appendContainer(value, into);
    case XKJsonKind::String:
        into.putString(value.view());
        return true;
    case XKJsonKind::Boolean:
        into.put(value.integer ? QStringView(u"true") : QStringView(u"false"));
        return true;
    case XKJsonKind::Integer:
        into.putNumber(value.integer);
        return true;
    case XKJsonKind::Decimal:
        if (isInfinite(value.view()))
            return refuse(Code::Unsupported, u"Infinity is not a valid number in JSON"_s);
        into.put(value.view());
        return true;
    case XKJsonKind::Double:
        if (!std::isfinite(value.real))
            return refuse(Code::Unsupported, std::isnan(value.real)
                                                 ? u"NaN is not a valid number in JSON"_s
                                                 : u"Infinity is not a valid number in JSON"_s);
        into.putNumber(value.real);
        return true;
    case XKJsonKind::Null:
        into.put(u"null");
        return true;
    case XKJsonKind::Object:
        return appendObject(*value.object, into);
    case XKJsonKind::None:
        break;
    }
    return refuseClass(u"(null)"_s);
}

// A chain of objects, each the proxy of the one before, is followed in a loop, whatever its length. What
// becomes of a proxy does not count: only an object that offers none is a failure.
bool XKJsonWriter::appendObject(const XKJsonObject &object, XKJsonOutput &into)
{
    std::optional<XKJsonValue> proxy = object.proxyForJson();
    if (!proxy)
        return refuseClass(object.className());
    for (const XKJsonObject *offering = &object; enterProxy(*offering, *proxy);) {
        offering = proxy->toObject();
        if (!offering) {
            appendValue(proxy->m_node, into);
            break;
        }
        proxy = offering->proxyForJson();
        if (!proxy) {
            refuseClass(offering->className());
            break;
        }
    }
    leaveProxies();
    return true;
}

inline bool XKJsonWriter::appendKey(const XKJsonNode &key, XKJsonOutput &into)
{
    if (key.kind() != XKJsonKind::String)
        return refuse(Code::Unsupported, u"JSON object key must be string"_s);
    into.putString(key.view());
    m_humanReadable ? into.put(u" : ") : into.put(u':');
    return true;
}

inline void XKJsonWriter::close(XKJsonOutput &into)
{
    const XKJsonNode container = m_frames.back().container;
    leaveContainer();
    if (m_humanReadable)
        into.putLine(spacesOfIndent());
    into.put(container.kind() == XKJsonKind::Dictionary ? u'}' : u']');
    m_frames.pop_back();
    if (!m_proxies.empty())
        leaveProxies();
}

Q_ALWAYS_INLINE bool XKJsonWriter::appendItem(XKJsonOutput &into)
{
    Frame &frame = m_frames.back();
    if (frame.done == frame.container.length()) {
        close(into);
        return true;
    }
    const std::size_t index = frame.done++;
    if (index > 0)
        into.put(u',');
    if (m_humanReadable)
        into.putLine(spacesOfIndent()); // which a proxy that failed may have deepened
    if (frame.container.kind() == XKJsonKind::Array)
        return appendValue(frame.container.items[index], into);
    const XKJsonNode *const key = frame.keyAt(index);
    return appendKey(*key, into) && (appendValue(key[1], into) || refuseMember(*key));
}

QString XKJsonWriter::textOf(const XKJsonValue &container)
{
    XKJsonOutput into;
    resetDepth();
    bool isAppended = appendContainer(container.m_node, into);
    while (isAppended && !m_frames.empty())
        isAppended = appendItem(into) || goOnBehindProxy();
    return isAppended ? into.take() : QString();
}

bool XKJsonWriter::enterProxy(const XKJsonObject &object, const XKJsonValue &value)
{
    constexpr std::size_t mostProxies = 10'000; // inside each other: objects made anew each time have no end
    if ((maxDepth() > 0 && m_proxies.size() == mostProxies) || !m_proxied.insert(&object).second)
        return refuseDepth();
    m_proxies.push_back({&object, value, m_frames.size()});
    return true;
}

// Leaves those that were met directly in the container that is now the innermost. False if there are none.
bool XKJsonWriter::leaveProxies()
{
    const std::size_t before = m_proxies.size();
    for (; !m_proxies.empty() && m_proxies.back().frames == m_frames.size(); m_proxies.pop_back())
        m_proxied.erase(m_proxies.back().object);
    return m_proxies.size() < before;
}

// After a failure in the innermost open container: gives up all containers out to the one that a proxy led
// to, itself included. False if there is none.
bool XKJsonWriter::goOnBehindProxy()
{
    for (m_frames.pop_back(); !m_frames.empty(); m_frames.pop_back()) {
        if (leaveProxies())
            return true;
        const Frame &around = m_frames.back();
        if (around.container.kind() == XKJsonKind::Dictionary)
            refuseMember(*around.keyAt(around.done - 1));
    }
    return false;
}

bool XKJsonWriter::refuseClass(const QString &className)
{
    return refuse(Code::Unsupported, "JSON serialisation not supported for %1"_L1.arg(className));
}

bool XKJsonWriter::refuseMember(const XKJsonNode &key)
{
    return refuse(Code::Unsupported, "Unsupported value for key %1 in object"_L1.arg(key.view()));
}
