#include "XKJsonNodeStack.h"

#include "XKJsonPages.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<XKJsonNode>);

// Not by realloc, which may copy a large stack into memory that has small pages yet.
void XKJsonNodeStack::grow()
{
    const std::size_t count = size();
    XKJsonNode *const nodes = m_nodes;
    const XKJsonArena::Memory old = useNew(2 * capacity());
    std::memcpy(m_nodes, nodes, count * sizeof(XKJsonNode));
    m_top = m_nodes + count;
}

// What is copied, the nodes before that place, is no more than what would have been copied otherwise.
XKJsonNode *XKJsonNodeStack::handOver(XKJsonArena &arena, std::size_t place)
{
    XKJsonNode *const nodes = m_nodes;
    arena.adopt(useNew(std::max(2 * place, largeCount / 2)));
    std::memcpy(m_nodes, nodes, place * sizeof(XKJsonNode));
    m_top = m_nodes + place;
    return nodes + place;
}

XKJsonArena::Memory XKJsonNodeStack::useNew(std::size_t capacity)
{
    XKJsonArena::Memory memory(std::malloc(capacity * sizeof(XKJsonNode)));
    if (!memory)
        throw std::bad_alloc();
    XKJsonPages::preferLarge(memory.get(), capacity * sizeof(XKJsonNode));
    m_memory.swap(memory);
    m_nodes = static_cast<XKJsonNode *>(m_memory.get());
    m_limit = m_nodes + (capacity - mostNodes);
    return memory;
}
