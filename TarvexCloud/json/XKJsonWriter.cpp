#include "XKJsonWriter.h"

#include "NSObject+XKJSON.h"

#include <algorithm>
#include <array>
#include <charconv>
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

bool isInfinite(QStringView decimal)
{
    constexpr qsizetype surelyFinite = 300; // so many digits are less than the largest double
    const auto isE = [](QChar unit) { return (unit.unicode() | 0x20) == u'e'; };
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
    leaveProxies(m_proxies.size());
    for (; text.isNull() && calls > 0; --calls)
        addErrorWithCode(Code::Fragment, u"Not valid type for JSON"_s);
    if (error && text.isNull())
        *error = lastError();
    return text;
}

QString XKJsonWriter::indent() const
{
    return u'\n' + QString(static_cast<qsizetype>(spacesOfIndent()), u' ');
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendContainer(const XKJsonNode &container,
                                                                 XKJsonOutput &into)
{
    if (!enterContainer())
        return Step::Failed;
    const bool isDictionary = container.kind() == XKJsonKind::Dictionary;
    m_frames.push_back({&container});
    if (m_isSorting && isDictionary)
        pushSortedKeys(container);
    into.put(isDictionary ? u'{' : u'[');
    return Step::Opened;
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendValue(const XKJsonNode &value, XKJsonOutput &into)
{
    switch (value.kind()) {
    case XKJsonKind::Dictionary:
    case XKJsonKind::Array:
        return appendContainer(value, into);
    case XKJsonKind::String:
        into.putString(value.view(), value.isPlain());
        return Step::Appended;
    case XKJsonKind::Boolean:
        value.integer ? into.put(u"true") : into.put(u"false");
        return Step::Appended;
    case XKJsonKind::Integer:
        into.putInteger(value.integer);
        return Step::Appended;
    case XKJsonKind::Decimal:
        return appendDecimal(value, into);
    case XKJsonKind::Double:
        return appendDouble(value.real, into);
    case XKJsonKind::Null:
        into.put(u"null");
        return Step::Appended;
    case XKJsonKind::Object: {
        XKJsonOutput lent = into;
        const Step step = appendObject(*value.object, lent);
        into = lent;
        return step;
    }
    case XKJsonKind::None:
        break;
    }
    return refuseClass(u"(null)"_s);
}

inline XKJsonWriter::Step XKJsonWriter::appendDecimal(const XKJsonNode &decimal, XKJsonOutput &into)
{
    if (isInfinite(decimal.view()))
        return refuse(u"Infinity is not a valid number in JSON"_s);
    into.put(decimal.view());
    return Step::Appended;
}

inline XKJsonWriter::Step XKJsonWriter::appendDouble(double real, XKJsonOutput &into)
{
    if (std::isnan(real))
        return refuse(u"NaN is not a valid number in JSON"_s);
    if (std::isinf(real))
        return refuse(u"Infinity is not a valid number in JSON"_s);
    std::array<char, 32> digits; // the shortest form takes 24 at most
    const char *const end = std::to_chars(digits.data(), digits.data() + digits.size(), real).ptr;
    into.put(QString::fromLatin1(digits.data(), end - digits.data()));
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
    for (const XKJsonObject *offering = &object; enterProxy(*offering, *proxy);) {
        const XKJsonNode &entered = m_proxies.back().second.m_node;
        offering = proxy->toObject();
        if (!offering) {
            if (appendAnyValue(entered, into) != Step::Opened)
                break;
            m_frames.back().proxies = m_proxies.size() - proxiesBefore;
            return Step::Opened;
        }
        proxy = offering->proxyForJson();
        if (!proxy) {
            refuseClass(offering->className());
            break;
        }
    }
    leaveProxies(m_proxies.size() - proxiesBefore);
    return Step::Appended;
}

// For values that are read at one more place than the many.
XKJsonWriter::Step XKJsonWriter::appendAnyValue(const XKJsonNode &value, XKJsonOutput &into)
{
    return appendValue(value, into);
}

Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendMember(const XKJsonNode &key, XKJsonOutput &into)
{
    if (key.kind() != XKJsonKind::String)
        return refuse(u"JSON object key must be string"_s);
    into.putString(key.view(), key.isPlain());
    m_humanReadable ? into.put(u" : ") : into.put(u":");
    const XKJsonNode &value = *(&key + 1);
    const Step step = appendValue(value, into);
    if (step == Step::Failed)
        refuseMember(key);
    return step;
}

template<bool isDictionary>
Q_ALWAYS_INLINE XKJsonWriter::Step XKJsonWriter::appendItems(XKJsonOutput &into)
{
    Frame &frame = m_frames.back();
    const XKJsonNode &container = *frame.container;
    Step step = Step::Appended;
    while (step == Step::Appended && frame.done < container.length()) {
        const std::size_t index = frame.done++; // the frame may move, if another is opened
        if (index > 0)
            into.put(u',');
        if (m_humanReadable)
            into.putLine(spacesOfIndent()); // which a proxy that failed may have deepened
        step = isDictionary ? appendMember(keyAt(container, index), into)
                            : appendValue(container.items[index], into);
    }
    if (step == Step::Appended)
        close(into);
    return step;
}

inline void XKJsonWriter::close(XKJsonOutput &into)
{
    const XKJsonNode &container = *m_frames.back().container;
    leaveContainer();
    if (m_humanReadable && container.length() > 0)
        into.putLine(spacesOfIndent());
    into.put(container.kind() == XKJsonKind::Dictionary ? u'}' : u']');
    leave();
}

inline void XKJsonWriter::leave()
{
    const Frame left = m_frames.back();
    m_frames.pop_back();
    if (m_isSorting && left.container->kind() == XKJsonKind::Dictionary)
        m_sorted.resize(m_sorted.size() - left.container->length());
    if (left.proxies > 0)
        leaveProxies(left.proxies);
}

QString XKJsonWriter::textOf(const XKJsonValue &container)
{
    QString text;
    XKJsonOutput into(text);
    resetDepth();
    m_frames.clear();
    m_sorted.clear();
    m_isSorting = m_sortKeys;
    Step step = appendContainer(container.m_node, into);
    while (step != Step::Failed && !m_frames.empty()) {
        const bool isDictionary = m_frames.back().container->kind() == XKJsonKind::Dictionary;
        step = isDictionary ? appendItems<true>(into) : appendItems<false>(into);
        if (step == Step::Failed && goOnBehindProxy())
            step = Step::Appended;
    }
    into.finish();
    return step == Step::Failed ? QString() : text;
}

// After a failure in the innermost open container: gives up all containers out to the one that a proxy led
// to, itself included. False if there is none.
bool XKJsonWriter::goOnBehindProxy()
{
    for (;;) {
        const bool isOfProxy = m_frames.back().proxies > 0;
        leave();
        if (isOfProxy || m_frames.empty())
            return isOfProxy;
        const Frame &around = m_frames.back();
        if (around.container->kind() == XKJsonKind::Dictionary)
            refuseMember(keyAt(*around.container, around.done - 1));
    }
}

void XKJsonWriter::pushSortedKeys(const XKJsonNode &dictionary)
{
    const std::size_t before = m_sorted.size();
    for (std::size_t i = 0; i < dictionary.length(); ++i)
        m_sorted.push_back(dictionary.items + 2 * i);
    std::sort(m_sorted.begin() + static_cast<std::ptrdiff_t>(before), m_sorted.end(), comesBefore);
}

inline const XKJsonNode &XKJsonWriter::keyAt(const XKJsonNode &dictionary, std::size_t index) const
{
    return m_isSorting ? *m_sorted[m_sorted.size() - dictionary.length() + index]
                       : dictionary.items[2 * index];
}

bool XKJsonWriter::enterProxy(const XKJsonObject &object, const XKJsonValue &proxy)
{
    constexpr std::size_t mostProxies = 10'000; // inside each other: objects made anew each time have no end
    if ((maxDepth() > 0 && m_proxies.size() == mostProxies) || !m_proxied.insert(&object).second) {
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
