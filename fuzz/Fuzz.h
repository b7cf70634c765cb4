#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

using Bytes = std::span<const std::uint8_t>;

/// What every target is: fed any bytes, it comes back unless something required does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

inline std::string_view viewOf(const std::uint8_t *bytes, std::size_t size)
{
    return {reinterpret_cast<const char *>(bytes), size};
}

inline void require(bool holds, const char *claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", claim);
    std::abort();
}
