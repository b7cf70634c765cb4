#pragma once

#include "XKJsonNode.h"

#include <atomic>
#include <QString>

/// Something on the heap that several values hold. It goes with the last of them.
class XKJsonShared
{
public:
    virtual ~XKJsonShared() = default;
    XKJsonShared(const XKJsonShared &) = delete;
    XKJsonShared &operator=(const XKJsonShared &) = delete;

    void retain() noexcept { m_holders.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept
    {
        if (isHeldOnce() || m_holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
            destroy(this);
    }
    bool isHeldOnce() const noexcept { return m_holders.load(std::memory_order_acquire) == 1; }

    /// Who owns what an item of a container in here points at, if anybody need.
    virtual XKJsonShared *ownerOf(const XKJsonNode &) { return this; }

protected:
    XKJsonShared() = default;

private:
    static void destroy(XKJsonShared *last) noexcept;

    std::atomic<int> m_holders = 1; // whoever makes it
    XKJsonShared *m_nextToDestroy = nullptr;
};

/// Asks the system to back an allocation with large pages, if it is worth that: much of what a large text
/// costs would otherwise be the system handing out one small page after another.
void preferLargePages(void *memory, std::size_t bytes);

/// The memory of one parsed tree, given back as a whole. The text is part of it: strings without escapes
/// and decimals point into it.
class XKJsonArena final : public XKJsonShared
{
public:
    static XKJsonArena *make(const QString &text);
    ~XKJsonArena() override;
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
};
