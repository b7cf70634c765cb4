#include "XKJsonMemory.h"

#include <algorithm>
#include <new>
#include <utility>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

// An answer of a few fields takes one allocation; a large text takes few, and wastes little of the last.
constexpr std::size_t smallestRoom = 256;
constexpr std::size_t largestFirstRoom = std::size_t(64) * 1024;
constexpr std::size_t chunkLimit = std::size_t(1024) * 1024;
constexpr std::size_t largeTextChunkLimit = 32 * chunkLimit; // so that large pages fit in

} // namespace

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
    constexpr std::uintptr_t pageMask = 4095;
    const auto first = reinterpret_cast<std::uintptr_t>(memory);
    // The whole of it, since an allocation backed in two ways could no longer grow without being copied.
    if (bytes >= worthwhile)
        (void)madvise(static_cast<char *>(memory) - (first & pageMask), bytes + (first & pageMask),
                      MADV_HUGEPAGE);
#endif
}

XKJsonArena *XKJsonArena::make(const QString &text)
{
    static_assert(sizeof(XKJsonArena) % alignof(XKJsonNode) == 0);
    QString own = text;
    (void)own.utf16(); // makes sure that a zero stands behind the text, whatever memory it was made from
    const std::size_t bytes =
        std::clamp(static_cast<std::size_t>(text.size()) * 2, smallestRoom, largestFirstRoom);
    char *const memory = static_cast<char *>(::operator new(sizeof(XKJsonArena) + bytes));
    return new (memory) XKJsonArena(std::move(own), memory + sizeof(XKJsonArena), bytes);
}

XKJsonArena::XKJsonArena(QString text, char *room, std::size_t bytes) noexcept
    : m_text(std::move(text)), m_next(room), m_limit(room + bytes), m_chunkSize(largestFirstRoom / 2),
      m_largestChunk(std::clamp(static_cast<std::size_t>(m_text.size()) / 2, chunkLimit, largeTextChunkLimit))
{
}

XKJsonArena::~XKJsonArena()
{
    while (m_chunks)
        ::operator delete(std::exchange(m_chunks, m_chunks->previous));
}

void *XKJsonArena::allocateInNewChunk(std::size_t bytes)
{
    m_chunkSize = std::min(m_chunkSize * 2, m_largestChunk);
    const std::size_t room = std::max(bytes, m_chunkSize);
    auto *const chunk = static_cast<Chunk *>(::operator new(sizeof(Chunk) + room));
    preferLargePages(chunk, sizeof(Chunk) + room);
    chunk->previous = m_chunks;
    m_chunks = chunk;
    char *const memory = reinterpret_cast<char *>(chunk + 1);
    // What does not fit the rest of a chunk must not cost that rest.
    if (room - bytes > static_cast<std::size_t>(m_limit - m_next)) {
        m_next = memory + bytes;
        m_limit = memory + room;
    }
    return memory;
}
