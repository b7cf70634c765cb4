#pragma once

#include <cstdint>

namespace tarvex::security {

/// A random number from 0 up to, not including, the limit, which is above zero; all are equally likely.
std::uint32_t randomBelow(std::uint32_t limit);

} // namespace tarvex::security
