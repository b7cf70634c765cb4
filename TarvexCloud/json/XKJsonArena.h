#pragma once

#include "XKJsonNode.h"
#include "XKJsonShared.h"

#include <cstdlib>
#include <memory>
#include <QString>
#include <vector>

/// The memory of one parsed tree, given back as a whole. The text is part of it: strings without escapes
/// and decimals point into it.
class XKJsonArena final : public XKJsonShared
{
    struct Free
    {
        void operator()(void *memory) const { std::free(memory); }
    };

public:
    using Memory = std::unique_ptr<void, Free>; ///< from malloc

    static XKJsonArena *make(const QString &text);
    ~XKJsonArena() override;
    void destroy() noexcept override { delete this; }
    static void operator delete(void *memory) { ::operator delete(memory); } // of more than the size

    const QString &text() const { return m_text; }

    /// Room for some bytes, aligned for a node.
    void *allocate(std::size_t bytes)
    {
        bytes = (bytes + alignof(XKJsonNode) - 1) & ~(alignof(XKJsonNode) - 1);
        if (static_cast<std::size_t>(m_limit - m_next) < bytes)
            return allocateInNewChunk(bytes);
        char *const memory = m_next;
        m_next += bytes;
        return memory;
    }
    XKJsonNode *copy(const XKJsonNode *nodes, std::size_t count);
    /// Makes memory with nodes in it part of the arena.
    void adopt(Memory memory) { m_adopted.push_back(std::move(memory)); }

private:
    struct Chunk
    {
        Chunk *previous;
    };

    XKJsonArena(QString text, char *room, std::size_t bytes) noexcept;
    void *allocateInNewChunk(std::size_t bytes);

    QString m_text;
    char *m_next;
    char *m_limit;
    std::size_t m_chunkSize;    // of the last chunk
    std::size_t m_largestChunk; // in bytes, as the other one
    Chunk *m_chunks = nullptr;  // beyond the first stretch, which lies behind the arena itself
    std::vector<Memory> m_adopted;
};
