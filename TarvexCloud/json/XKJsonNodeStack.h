#pragma once

#include "XKJsonArena.h"

#include <array>

/// The nodes of the containers that a parse has open, innermost last. It starts inside the object, so that a
/// small text needs no memory for it.
class XKJsonNodeStack
{
public:
    XKJsonNodeStack() = default;
    XKJsonNodeStack(const XKJsonNodeStack &) = delete;
    XKJsonNodeStack &operator=(const XKJsonNodeStack &) = delete;

    /// Where the next node is to be made; it is none of the stack's before keep(). Made in place because a
    /// copy would wait for the stores of its two halves.
    XKJsonNode &next()
    {
        Q_ASSERT(m_top < m_limit + mostNodes);
        return *m_top;
    }
    void keep() { ++m_top; }
    /// To be called before a member or an element is read, so that next() has room for all its nodes.
    /// There is room for the first.
    void makeRoom()
    {
        if (m_top >= m_limit)
            grow();
    }
    std::size_t size() const { return static_cast<std::size_t>(m_top - m_nodes); }
    XKJsonNode &operator[](std::size_t place) { return m_nodes[place]; }
    /// The nodes from a place on, moved into the arena, together with so many of those in front of them:
    /// copied, or with their memory if they are most of a large stack.
    XKJsonNode *moveTo(XKJsonArena &arena, std::size_t place, std::size_t inFront = 0)
    {
        if (Q_UNLIKELY(isLarge() && 2 * (size() - place) >= capacity()))
            return handOver(arena, place);
        XKJsonNode *const copied = arena.copy(m_nodes + place - inFront, size() - place + inFront);
        shrinkTo(place);
        return copied + inFront;
    }
    void shrinkTo(std::size_t size) { m_top = m_nodes + size; }

private:
    std::size_t capacity() const { return static_cast<std::size_t>(m_limit - m_nodes) + mostNodes; }
    bool isLarge() const { return capacity() >= largeCount; }
    void grow();
    XKJsonNode *handOver(XKJsonArena &arena, std::size_t place);
    /// Gives what was in use before, with the nodes in it.
    XKJsonArena::Memory useNew(std::size_t capacity);

    /// Of a member: its key, its value or an opened dictionary, and what is foreseen of that.
    static constexpr std::size_t mostNodes = 3;
    static constexpr std::size_t firstCount = 64;
    static constexpr std::size_t largeCount = std::size_t(64) * 1024; // better not copied

    alignas(XKJsonNode) std::array<std::byte, firstCount * sizeof(XKJsonNode)> m_first; // not set on purpose
    XKJsonArena::Memory m_memory; // in use once m_first is outgrown
    XKJsonNode *m_nodes = reinterpret_cast<XKJsonNode *>(m_first.data());
    XKJsonNode *m_top = m_nodes;
    XKJsonNode *m_limit = m_nodes + (firstCount - mostNodes);
};
