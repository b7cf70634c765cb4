#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::pages {

// Days are counted from 1970.

/// A day that is marked below a chart, and what stands there.
struct Tick
{
    std::int64_t day = 0;
    std::string text;
};

/// As many days of these as there is room for, at which people count: days, months or years.
std::vector<Tick> ticksOf(std::int64_t firstDay, std::int64_t lastDay);

/// A day in words: 22 Nov 2026.
std::string fullDate(std::int64_t day);

} // namespace tarvex::pages
