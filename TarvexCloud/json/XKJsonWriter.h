#pragma once

#include "XKJsonBase.h"
#include "XKJsonOutput.h"
#include "XKJsonValue.h"

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

    // A container being written.
    struct Frame
    {
        const XKJsonNode *next = nullptr; // item
        const XKJsonNode *end = nullptr;
        std::size_t itemSize = 0;        // in bytes: values of a container stand wider than nodes of an arena
        const XKJsonNode *key = nullptr; // of the member being written
        std::size_t sortedBegin = 0;     // in m_sorted
        std::size_t sortedNext = 0;
        std::size_t proxies = 0; // that led to this container
        bool isDictionary = false;
        bool isAtFirst = true;
    };

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
    void appendSeparator(Frame &frame, XKJsonOutput &into, char16_t *&end);
    Step appendAnyValue(const XKJsonNode &value, XKJsonOutput &into);
    Step appendObject(const XKJsonObject &object, XKJsonOutput &into);
    Step appendProxy(std::size_t chain, XKJsonOutput &into);

    void open(const XKJsonNode &container);
    void close(char16_t bracket, XKJsonOutput &into, char16_t *&end);
    void leave();
    void sortKeysOfInnermost();
    const XKJsonNode *nextKey(Frame &frame);
    bool goOnBehindProxy();
    bool enterProxy(const XKJsonObject &object, const XKJsonValue &proxy);
    void leaveProxies(std::size_t count);
    std::size_t spacesOfIndent() const { return depth() > 0 ? 2 * static_cast<std::size_t>(depth()) : 0; }
    Step refuse(const QString &description);
    Step refuseClass(const QString &className);
    void refuseMember(const XKJsonNode &key);

    bool m_humanReadable = false;
    bool m_sortKeys = false;
    std::vector<Frame> m_frames;
    std::vector<const XKJsonNode *> m_sorted;                            // keys, of all open dictionaries
    std::vector<std::pair<const XKJsonObject *, XKJsonValue>> m_proxies; // being written
    std::unordered_set<const XKJsonObject *> m_proxied;                  // the objects of these
};
