#include "XKJsonMemory.h"

#include <utility>

#ifdef __linux__
#include <sys/mman.h>
#endif

// What goes may hold others that go with it, and these again, objects of the program's own among them. They
// wait in a list until the first is gone, since the machine stack has its end.
void XKJsonShared::destroy(XKJsonShared *last) noexcept
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

void preferLargePages([[maybe_unused]] void *memory, [[maybe_unused]] std::size_t bytes)
{
#ifdef __linux__
    constexpr std::size_t worthwhile = std::size_t(4) * 1024 * 1024; // holds one large page at least
    // The whole of it, since an allocation backed in two ways could no longer grow without being copied.
    const std::size_t beforePage = reinterpret_cast<std::uintptr_t>(memory) % 4096;
    if (bytes >= worthwhile)
        (void)madvise(static_cast<char *>(memory) - beforePage, bytes + beforePage, MADV_HUGEPAGE);
#endif
}

XKJsonArena::XKJsonArena(const QString &text) : m_text(text), m_memory(m_first.data(), m_first.size(), this)
{
    (void)m_text.utf16(); // makes sure of the zero, whatever memory the text was made from
}

void *XKJsonArena::do_allocate(std::size_t bytes, std::size_t alignment)
{
    void *const memory = std::pmr::new_delete_resource()->allocate(bytes, alignment);
    preferLargePages(memory, bytes);
    return memory;
}

void XKJsonArena::do_deallocate(void *memory, std::size_t bytes, std::size_t alignment)
{
    std::pmr::new_delete_resource()->deallocate(memory, bytes, alignment);
}
