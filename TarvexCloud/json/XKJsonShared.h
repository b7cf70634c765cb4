#pragma once

#include <atomic>

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
        if (drop())
            destroy();
    }
    /// One holder less; true if it was the last, who must then destroy().
    bool drop() noexcept { return isHeldOnce() || m_holders.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    bool isHeldOnce() const noexcept { return m_holders.load(std::memory_order_acquire) == 1; }

    virtual void destroy() noexcept = 0;

protected:
    XKJsonShared() = default;

private:
    std::atomic<int> m_holders = 1; // whoever makes it
};
