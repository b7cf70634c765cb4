#include "XKJsonNodeStack.h"

#include "XKJsonPages.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

// realloc, which moves a large stack by remapping its pages, is right for nodes as they are.
static_assert(std::is_trivially_copyable_v<XKJsonNode>);

void XKJsonNodeStack::grow()
{
    const std::size_t count = size();
    void *const memory = std::realloc(m_memory.get(), 2 * count * sizeof(XKJsonNode));
    if (!memory)
        throw std::bad_alloc();
    XKJsonPages::preferLarge(memory, 2 * count * sizeof(XKJsonNode));
    const bool isFirst = !m_memory;
    (void)m_memory.release();
    m_memory.reset(memory);
    m_nodes = static_cast<XKJsonNode *>(memory);
    if (isFirst)
        std::memcpy(memory, m_first.data(), sizeof(m_first));
    m_top = m_nodes + count;
    m_limit = m_nodes + 2 * count;
}
