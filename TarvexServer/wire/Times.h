#pragma once

#include <cstdint>
#include <string>

namespace tarvex::wire {

/// A time in seconds since 1970 as people and programs read it (RFC 3339): 2026-11-22T19:30:00Z.
std::string utcTime(std::int64_t seconds);

/// The day of a time: 2026-11-22.
std::string utcDay(std::int64_t seconds);

} // namespace tarvex::wire
