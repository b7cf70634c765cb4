#pragma once

#include "XKJsonBase.h"
#include "XKJsonOutput.h"
#include "XKJsonValue.h"

#include <list>
#include <unordered_set>
#include <vector>

/// Turns a tree into JSON text. A dictionary or an array must stand at the top. Nesting costs heap, never
/// machine stack.
///
/// An object is written as the proxy it offers. A proxy that cannot be written leaves its errors in the
/// trace and what it had written so far in the text, yet the writing goes on; one that leads back to an
/// object being written counts as nested too deep.
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
        std::size_t done; // elements or members, the one being written included
    };
    // The way to a container that proxies led to.
    struct ProxyFrame
    {
        std::size_t frame; // of that container
        std::size_t chain; // proxies, each of the one before
    };
    struct Items;

    QString textOf(const XKJsonValue &container);
    bool appendOpenContainers(XKJsonOutput &into);
    // These two go on with the innermost open container: to its end, or to where another opens inside it.
    Step appendElements(XKJsonOutput &into);
    Step appendMembers(XKJsonOutput &into);

    // What takes the text's end as an argument does so for it to stay in a register of these two.
    Step appendMember(const XKJsonNode &key, const XKJsonNode &value, XKJsonOutput &into, char16_t *&end);
    Step appendValue(const XKJsonNode &value, XKJsonOutput &into, char16_t *&end);
    Step appendArray(const XKJsonNode &array, XKJsonOutput &into, char16_t *&end);
    Step appendDictionary(const XKJsonNode &dictionary, XKJsonOutput &into, char16_t *&end);
    Step appendString(const XKJsonNode &string, XKJsonOutput &into, char16_t *&end);
    Step appendDouble(double real, XKJsonOutput &into, char16_t *&end);
    void appendSeparator(bool isFirst, XKJsonOutput &into, char16_t *&end);
    Step appendAnyValue(const XKJsonNode &value, XKJsonOutput &into);
    Step appendObject(const XKJsonObject &object, XKJsonOutput &into);
    Step appendProxy(std::size_t chain, XKJsonOutput &into);

    void close(char16_t bracket, XKJsonOutput &into, char16_t *&end);
    void leave();
    void pushSortedKeys(const Items &members);
    const XKJsonNode &keyAt(const Items &members, std::size_t index) const;
    bool goOnBehindProxy();
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
    std::list<std::pair<const XKJsonObject *, XKJsonValue>> m_proxies; // being written; frames point at them
    std::unordered_set<const XKJsonObject *> m_proxied;                // the objects of these
    std::vector<ProxyFrame> m_proxyFrames;
};
