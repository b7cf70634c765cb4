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

    void push(const XKJsonNode &node)
    {
        if (m_top == m_limit)
            grow();
        *m_top++ = node;
    }
    std::size_t size() const { return static_cast<std::size_t>(m_top - m_nodes); }
    XKJsonNode &operator[](std::size_t place) { return m_nodes[place]; }
    XKJsonNode &top() { return m_top[-1]; }
    void shrinkTo(std::size_t size) { m_top = m_nodes + size; }

private:
    void grow();

    struct Free
    {
        void operator()(void *memory) const { std::free(memory); }
    };

    std::array<XKJsonNode, 64> m_first;
    std::unique_ptr<void, Free> m_memory; // in use once m_first is outgrown
    XKJsonNode *m_nodes = m_first.data();
    XKJsonNode *m_top = m_nodes;
    XKJsonNode *m_limit = m_nodes + m_first.size();
};
