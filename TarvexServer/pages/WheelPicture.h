#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarvex::pages {

constexpr std::size_t sliceCount = 8;

/// The slices' colours by area, clockwise from twelve o'clock.
extern const std::array<std::string_view, sliceCount> sliceColors;

/// What a slice shows, by area.
struct Slice
{
    std::int32_t value = 0;
    std::int64_t percent = 0;
    std::string words; ///< what it shows, for whoever does not see it
    std::string link;  ///< where it leads; empty for nowhere
};

/// The wheel as SVG that stands within a page: the slices with their values, numbers and percents. The words
/// are any text. The picture is known by the name, also a text.
std::string wheelPicture(const std::string &name, const std::array<Slice, sliceCount> &slices);

} // namespace tarvex::pages
