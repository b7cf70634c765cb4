#include "XKJsonPages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

void XKJsonPages::preferLarge([[maybe_unused]] void *memory, [[maybe_unused]] std::size_t bytes)
{
#ifdef __linux__
    constexpr std::size_t worthwhile = std::size_t(4) * 1024 * 1024; // holds one large page at least
    if (bytes < worthwhile)
        return;
    static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto first = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = first & ~(page - 1);
    const std::uintptr_t end = (first + bytes + page - 1) & ~(page - 1);
    (void)madvise(static_cast<char *>(memory) - (first - begin), end - begin,
                  MADV_HUGEPAGE); // as good without
#endif
}
