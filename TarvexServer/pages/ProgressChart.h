#pragma once

#include "Progress.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::pages {

/// What a chart of a set shows. Texts are plain, without any markup.
struct ProgressChart
{
    struct Area
    {
        std::string name;
        std::string color; ///< as in CSS
    };

    std::string id;    ///< what the ids in the picture begin with, which no other on the page may
    std::string title; ///< what the picture is called by those who cannot see it
    std::array<Area, 8> areas;
    std::int64_t firstDay = 0; ///< counted from 1970, as all days here
    std::int64_t lastDay = 0;
    std::vector<store::DayOfAreas> days; ///< of store::setProgress() for these days
};

/// The percents of the areas, each with its number at its end, and their average from the first day to the
/// last, as SVG that stands within a page. It takes its ink from the text around it, and its size, which has
/// no end to the days, from the place it is given. No line has more than some 200 points: of more, the first,
/// the last and what reaches furthest stay.
std::string svgOf(const ProgressChart &chart);

/// The average of a set as the client computes it: truncated.
std::int32_t averageOf(const store::OfAreas &percents);

} // namespace tarvex::pages
