#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarvex::wire {

/// A number as the protocol writes it: ASCII decimal, an optional minus sign, no leading zeros, no blanks,
/// within 32 signed bits. Anything else is nothing, so that a damaged number never acts.
std::optional<std::int32_t> decimal32(std::string_view text);

/// An id: a decimal32() above zero.
std::optional<std::int64_t> wireId(std::string_view text);

} // namespace tarvex::wire
