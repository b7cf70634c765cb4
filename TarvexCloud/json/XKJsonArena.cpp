#include "XKJsonArena.h"

#include "XKJsonPages.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// An answer of a few fields takes one allocation; a large text takes few, and wastes little of the last.
constexpr std::size_t smallestRoom = 256;
constexpr std::size_t largestFirstRoom = std::size_t(64) * 1024;
constexpr std::size_t chunkSizeLimit = std::size_t(1024) * 1024;
constexpr std::size_t largeTextChunkSizeLimit = 32 * chunkSizeLimit; // so that large pages fit in

} // namespace

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
      m_largestChunk(
          std::clamp(static_cast<std::size_t>(m_text.size()) / 2, chunkSizeLimit, largeTextChunkSizeLimit))
{
}

XKJsonArena::~XKJsonArena()
{
    while (m_chunks) {
        Chunk *const chunk = m_chunks;
        m_chunks = chunk->previous;
        ::operator delete(chunk);
    }
}

XKJsonNode *XKJsonArena::copy(const XKJsonNode *nodes, std::size_t count)
{
    auto *const copied = static_cast<XKJsonNode *>(allocate(count * sizeof(XKJsonNode)));
    constexpr std::size_t few = 8; // for which a call would cost more
    if (count > few)
        std::memcpy(copied, nodes, count * sizeof(XKJsonNode));
    else
        for (std::size_t i = 0; i < count; ++i)
            copied[i] = nodes[i];
    return copied;
}

void *XKJsonArena::allocateInNewChunk(std::size_t bytes)
{
    m_chunkSize = std::min(m_chunkSize * 2, m_largestChunk);
    const std::size_t room = std::max(bytes, m_chunkSize);
    auto *const chunk = static_cast<Chunk *>(::operator new(sizeof(Chunk) + room));
    XKJsonPages::preferLarge(chunk, sizeof(Chunk) + room);
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
