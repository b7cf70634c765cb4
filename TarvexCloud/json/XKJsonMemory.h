#pragma once

#include "XKJsonNode.h"

#include <array>
#include <atomic>
#include <memory_resource>
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
        if (m_holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
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
class XKJsonArena final : public XKJsonShared, private std::pmr::memory_resource
{
public:
    explicit XKJsonArena(const QString &text);

    /// A zero stands behind it.
    const QString &text() const { return m_text; }
    /// Room for some bytes, aligned for a node.
    void *allocate(std::size_t bytes) { return m_memory.allocate(bytes, alignof(XKJsonNode)); }

private:
    // Where the memory comes from, as far as the first of it does not do.
    void *do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void *memory, std::size_t bytes, std::size_t alignment) override;
    bool do_is_equal(const memory_resource &other) const noexcept override { return this == &other; }

    QString m_text;
    std::array<std::byte, 512> m_first; // so that an answer of a few fields takes one allocation
    std::pmr::monotonic_buffer_resource m_memory;
};
