#pragma once

#include "XKJsonNode.h"

#include <array>
#include <memory>

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
        if (m_top == m_limit)
            grow();
        return *m_top;
    }
    void keep() { ++m_top; }
    std::size_t size() const { return static_cast<std::size_t>(m_top - m_nodes); }
    XKJsonNode &operator[](std::size_t place) { return m_nodes[place]; }
    void shrinkTo(std::size_t size) { m_top = m_nodes + size; }

private:
    void grow();

    struct Free
    {
        void operator()(void *memory) const { std::free(memory); }
    };

    static constexpr std::size_t firstCount = 64;
    alignas(XKJsonNode) std::array<std::byte, firstCount * sizeof(XKJsonNode)> m_first; // not set on purpose
    std::unique_ptr<void, Free> m_memory; // in use once m_first is outgrown
    XKJsonNode *m_nodes = reinterpret_cast<XKJsonNode *>(m_first.data());
    XKJsonNode *m_top = m_nodes;
    XKJsonNode *m_limit = m_nodes + firstCount;
};
