#pragma once

#include "XKJsonNode.h"

#include <array>
#include <atomic>
#include <memory_resource>
#include <QString>
#include <utility>

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
    // What goes may hold others that go with it, and these again, objects of the program's own among them.
    // They wait in a list until the first is gone, since the machine stack has its end.
    static void destroy(XKJsonShared *last) noexcept
    {
        thread_local XKJsonShared *waiting = nullptr;
        thread_local bool isDestroying = false;
        last->m_nextToDestroy = std::exchange(waiting, last);
        if (std::exchange(isDestroying, true))
            return;
        while (waiting)
            delete std::exchange(waiting, waiting->m_nextToDestroy);
        isDestroying = false;
    }

    std::atomic<int> m_holders = 1; // whoever makes it
    XKJsonShared *m_nextToDestroy = nullptr;
};

/// The memory of one parsed tree, given back as a whole. The text is part of it: strings without escapes
/// and decimals point into it.
class XKJsonArena final : public XKJsonShared
{
public:
    explicit XKJsonArena(const QString &text) : m_text(text), m_memory(m_first.data(), m_first.size())
    {
        (void)m_text.utf16(); // makes sure of the zero, whatever memory the text was made from
    }

    /// A zero stands behind it.
    const QString &text() const { return m_text; }
    /// Room for some bytes, aligned for a node.
    void *allocate(std::size_t bytes) { return m_memory.allocate(bytes, alignof(XKJsonNode)); }

private:
    QString m_text;
    std::array<std::byte, 512> m_first; // so that an answer of a few fields takes one allocation
    std::pmr::monotonic_buffer_resource m_memory;
};
