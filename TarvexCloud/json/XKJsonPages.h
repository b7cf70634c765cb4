#pragma once

#include <cstddef>

namespace XKJsonPages {
/// Asks the system to back an allocation with large pages where nothing was written yet. Much of what a large
/// text costs would otherwise be the system handing out one small page after another. Takes the whole of the
/// allocation, since one backed in two ways could no longer grow without being copied; leaves small ones
/// alone.
void preferLarge(void *memory, std::size_t bytes);
} // namespace XKJsonPages
