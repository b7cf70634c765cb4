#include "Random.h"

#include <sodium.h>

namespace tarvex::security {

std::uint32_t randomBelow(std::uint32_t limit)
{
    return randombytes_uniform(limit);
}

} // namespace tarvex::security
