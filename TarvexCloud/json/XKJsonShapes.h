#pragma once

#include "XKJsonNode.h"
#include "XKJsonText.h"

#include <algorithm>
#include <array>

/// The members that a dictionary being read is likely to have: those of another one, read before. A node
/// again, whose items begin with the member that should come next, and whose length tells how many are left.
namespace XKJsonForeseen {

inline XKJsonNode membersLikeThoseOf(const XKJsonNode &dictionary)
{
    XKJsonNode foreseen = dictionary;
    foreseen.head |= XKJsonNode::Distinct;
    return foreseen;
}

inline void pass(XKJsonNode &foreseen, std::size_t members)
{
    foreseen.items += 2 * members;
    foreseen.shorten(members);
}

/// How many units the next key and its closing quote take at the cursor, behind its opening quote; none if
/// something else stands there.
inline std::size_t lengthOfNext(const XKJsonNode &foreseen, const char16_t *c, XKJsonText::Limit limit)
{
    if (foreseen.length() == 0 || !foreseen.items->is(XKJsonNode::Plain))
        return 0;
    const std::size_t length = foreseen.items->length() + 1;
    return XKJsonText::isRepeated(c, limit, foreseen.items->text, length) ? length : 0;
}

/// Passes a key that was not the next one, together with one that is missing. If it was not foreseen at all,
/// it may be a repeated one.
inline void passUnexpected(XKJsonNode &foreseen, const XKJsonNode &key)
{
    const std::size_t most = std::min<std::size_t>(foreseen.length(), 2);
    for (std::size_t i = 0; i < most; ++i)
        if (foreseen.items[2 * i].view() == key.view())
            return pass(foreseen, i + 1);
    foreseen.head &= ~quint64(XKJsonNode::Distinct);
}

} // namespace XKJsonForeseen

/// Some dictionaries of a text, by their first keys. In most texts many have the same keys in the same order.
class XKJsonShapes
{
public:
    void clear() { m_isEmpty = true; }

    /// The members that are likely to come with such a first key, itself included.
    XKJsonNode foreseenFrom(const XKJsonNode &firstKey) const
    {
        if (m_isEmpty)
            return XKJsonNode();
        const Members &known = m_known[placeOf(firstKey)];
        return XKJsonNode(XKJsonKind::Dictionary, known.first, known.count, XKJsonNode::Distinct);
    }
    /// Takes note of a dictionary that lies in an arena.
    void remember(const XKJsonNode &dictionary)
    {
        constexpr std::size_t fewest = 3; // with less there is nothing to gain
        if (dictionary.length() < fewest)
            return;
        if (m_isEmpty)
            m_known.fill({});
        m_isEmpty = false;
        m_known[placeOf(*dictionary.items)] = {dictionary.items, dictionary.length()};
    }

private:
    struct Members // without values of their own, so that a table of them costs nothing before it is used
    {
        const XKJsonNode *first;
        std::size_t count;
    };

    static std::size_t placeOf(const XKJsonNode &key)
    {
        const std::size_t length = key.length();
        return length == 0 ? 0
                           : (7 * length + 3 * std::size_t(key.text[0]) + key.text[length - 1]) % placeCount;
    }

    static constexpr std::size_t placeCount = 32;

    bool m_isEmpty = true;
    std::array<Members, placeCount> m_known; // not set on purpose while it is empty
};
