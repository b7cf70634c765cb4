#pragma once

#include <cstddef>

namespace tarvex::requests {

/// What one request may hold in bytes, and so the goals that one save can bring.
constexpr std::size_t largestBody = 4UL * 1024 * 1024;

} // namespace tarvex::requests
