#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvex::pages {

/// A day, counted from 1970, as forms have it: 2026-11-22.
std::string textOfDay(std::int64_t day);
/// The day of such a text; nothing if it is none, or before 1970.
std::optional<std::int64_t> dayOfText(std::string_view text);

} // namespace tarvex::pages
