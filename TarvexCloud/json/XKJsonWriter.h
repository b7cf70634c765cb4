#pragma once

#include "XKJsonBase.h"
#include "XKJsonOutput.h"
#include "XKJsonValue.h"

#include <deque>
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
    QString indent() const;

private:
    enum class Step { Failed, Appended, Opened };

    // A container being written. Small, since there is one for each level of nesting.
    struct Frame
    {
        const XKJsonNode *container;
        std::size_t done = 0;    // elements or members, the one being written included
        std::size_t proxies = 0; // that led to it, each of the one before
    };

    QString textOf(const XKJsonValue &container);
    /// Goes on with the innermost open container: to its end, or to where another opens inside it.
    template<bool isDictionary>
    Step appendItems(XKJsonOutput &into);
    Step appendMember(const XKJsonNode &key, XKJsonOutput &into);
    Step appendValue(const XKJsonNode &value, XKJsonOutput &into);
    Step appendAnyValue(const XKJsonNode &value, XKJsonOutput &into);
    Step appendContainer(const XKJsonNode &container, XKJsonOutput &into);
    Step appendDecimal(const XKJsonNode &decimal, XKJsonOutput &into);
    Step appendDouble(double real, XKJsonOutput &into);
    Step appendObject(const XKJsonObject &object, XKJsonOutput &into);
    void close(XKJsonOutput &into);
    void leave();
    bool goOnBehindProxy();

    void pushSortedKeys(const XKJsonNode &dictionary);
    const XKJsonNode &keyAt(const XKJsonNode &dictionary, std::size_t index) const;
    bool enterProxy(const XKJsonObject &object, const XKJsonValue &proxy);
    void leaveProxies(std::size_t count);
    std::size_t spacesOfIndent() const { return depth() > 0 ? 2 * static_cast<std::size_t>(depth()) : 0; }
    Step refuse(const QString &description);
    Step refuseClass(const QString &className);
    void refuseMember(const XKJsonNode &key);

    bool m_humanReadable = false;
    bool m_sortKeys = false;
    bool m_isSorting = false; // as m_sortKeys was when the writing began
    std::vector<Frame> m_frames;
    std::vector<const XKJsonNode *> m_sorted; // keys of all open dictionaries, the innermost's last
    std::deque<std::pair<const XKJsonObject *, XKJsonValue>> m_proxies; // being written; frames point into it
    std::unordered_set<const XKJsonObject *> m_proxied;                 // the objects of these
};
