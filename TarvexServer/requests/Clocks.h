#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>

namespace tarvex::requests {

struct Clocks
{
    std::function<std::chrono::steady_clock::time_point()> steady = std::chrono::steady_clock::now;
    std::function<std::int64_t()> seconds = [] { return std::time(nullptr); }; ///< since 1970
};

} // namespace tarvex::requests
