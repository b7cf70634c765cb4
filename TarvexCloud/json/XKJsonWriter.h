#pragma once

#include "XKJsonBase.h"
#include "XKJsonOutput.h"
#include "XKJsonValue.h"

#include <memory>
#include <unordered_set>
#include <vector>

/// Turns a tree into JSON text. A dictionary or an array must stand at the top. Nesting costs heap, never
/// machine stack.
///
/// An object is written as the proxy it offers. Odd, and kept on purpose: a proxy that cannot be written
/// leaves its errors in the trace and what it had written so far in the text, yet the writing goes on. One
/// that leads back to an object being written counts as nested too deep, and so do ten thousand objects
/// inside each other, unless nesting has no limit: then whatever has an end is written in full, and objects
/// that make ever new ones have none.
class XKJsonWriter : public XKJsonBase
{
public:
    /// The text, or a null string: then errorTrace() tells why, and `error`, if given, receives the last
    /// error of it.
    QString stringWithObject(const XKJsonValue &object, XKJsonError *error = nullptr);

    /// A new line before every element, member and closing bracket, indented by two spaces a level. Without
    /// a nesting limit levels are not counted, and nothing is indented.
    bool humanReadable() const { return m_humanReadable; }
    void setHumanReadable(bool humanReadable) { m_humanReadable = humanReadable; }
    /// Members in the order of their keys' units instead of the dictionary's own order.
    bool sortKeys() const { return m_sortKeys; }
    void setSortKeys(bool sortKeys) { m_sortKeys = sortKeys; }

    /// The line break at the current depth.
    QString indent() const { return u'\n' + QString(spacesOfIndent(), u' '); }

private:
    // A container being written. Small, since there is one for each level of nesting.
    struct Frame
    {
        const XKJsonNode *keyAt(std::size_t index) const
        {
            return sortedKeys ? sortedKeys[index] : container.items + 2 * index;
        }

        XKJsonNode container;
        std::size_t done = 0; // elements or members, the one being written included
        std::unique_ptr<const XKJsonNode *[]> sortedKeys; // if they are to be sorted
    };
    // An object being written as what it offers.
    struct Proxy
    {
        const XKJsonObject *object;
        XKJsonValue value;
        std::size_t frames; // that were open around it
    };

    QString textOf(const XKJsonValue &container);
    // Each of these writes a value, or opens the container.
    bool appendValue(const XKJsonNode &value, XKJsonOutput &into);
    bool appendContainer(const XKJsonNode &container, XKJsonOutput &into);
    bool appendObject(const XKJsonObject &object, XKJsonOutput &into);
    /// Goes on in the innermost open container: writes its next item, or closes it.
    bool appendItem(XKJsonOutput &into);
    bool appendKey(const XKJsonNode &key, XKJsonOutput &into);
    void close(XKJsonOutput &into);

    bool enterProxy(const XKJsonObject &object, const XKJsonValue &value);
    bool leaveProxies();
    bool goOnBehindProxy();
    qsizetype spacesOfIndent() const { return depth() > 0 ? 2 * static_cast<qsizetype>(depth()) : 0; }
    bool refuseClass(const QString &className);
    bool refuseMember(const XKJsonNode &key);

    bool m_humanReadable = false;
    bool m_sortKeys = false;
    std::vector<Frame> m_frames;
    std::vector<Proxy> m_proxies;                       // of objects inside each other
    std::unordered_set<const XKJsonObject *> m_proxied; // these objects
};
