#pragma once

#include <cstdint>
#include <limits>

namespace tarvex::store {

/// What a database may take of its disk, in bytes.
struct Room
{
    std::uintmax_t keptFree = 0; ///< so much of the disk is left free
    std::uintmax_t largest = std::numeric_limits<std::uintmax_t>::max();
    bool withoutCopy = false; ///< a database of an older schema is not copied before it is changed
};

} // namespace tarvex::store
