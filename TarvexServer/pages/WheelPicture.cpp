#include "WheelPicture.h"

#include "Templates.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace tarvex::pages {

const std::array<std::string_view, sliceCount> sliceColors = {"#b699c9", "#f5bf39", "#95c848", "#4fafe3",
                                                              "#d75d87", "#60d5b9", "#e3e380", "#e9f438"};

namespace {

constexpr double centre = 215; // of a square of twice that, with a little air round the wheel
constexpr double sliceRadius = 210;
constexpr double labelRadius = 156;
constexpr std::uint32_t radiusPerValue = 21;
constexpr double reach = 305; // from the centre to a corner: nothing beyond is seen
constexpr double sliceAngle = 45;
constexpr double rightAngle = 90;

struct Point
{
    double x = 0;
    double y = 0;
};

/// Angles are degrees against the clock from three o'clock; the picture's y runs down.
Point polar(double radius, double angle)
{
    const double radians = angle * std::numbers::pi / 180;
    return {.x = centre + radius * std::cos(radians), .y = centre - radius * std::sin(radians)};
}

std::string number(double value)
{
    constexpr int decimals = 2;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals).ptr;
    return {text.data(), end};
}

std::string pair(const Point &point)
{
    return number(point.x) + " " + number(point.y);
}

/// A negative radius gives the sector on the opposite side.
std::string sector(double radius, std::size_t index)
{
    const double end = rightAngle - sliceAngle * static_cast<double>(index);
    const std::string length = number(std::abs(radius));
    return "M" + number(centre) + " " + number(centre) + "L" + pair(polar(radius, end - sliceAngle)) + "A" +
           length + " " + length + " 0 0 0 " + pair(polar(radius, end)) + "Z";
}

/// 21 for the value 0, a full slice for 9; it wraps as in the client, and what is out of sight is cut.
double valueRadius(std::int32_t value)
{
    const auto radius =
        static_cast<std::int32_t>(radiusPerValue * static_cast<std::uint32_t>(value) + radiusPerValue);
    return std::clamp(static_cast<double>(radius), -reach, reach);
}

std::string label(const Slice &slice, std::size_t index)
{
    const Point place = polar(labelRadius, rightAngle - sliceAngle * (static_cast<double>(index) + 0.5));
    const std::string x = number(place.x);
    return "<text class=\"slice\" aria-hidden=\"true\"><tspan x=\"" + x + "\" y=\"" + number(place.y - 5) +
           "\">" + std::to_string(index + 1) + "</tspan><tspan class=\"percent\" x=\"" + x + "\" y=\"" +
           number(place.y + 15) + "\">" + std::to_string(slice.percent) + "%</tspan></text>";
}

std::string shape(const Slice &slice, std::size_t index)
{
    std::string shape = "<path d=\"" + sector(sliceRadius, index) + "\" fill=\"" +
                        std::string(sliceColors.at(index)) +
                        "\" stroke=\"#fff\" stroke-width=\"1.5\"/><path d=\"" +
                        sector(valueRadius(slice.value), index) + "\" fill=\"#fff\" fill-opacity=\"0.7\"/>";
    const std::string title = "<title>" + markup(slice.words) + "</title>";
    if (slice.link.empty())
        return "<g role=\"img\" aria-label=\"" + markup(slice.words) + "\">" + title + shape + "</g>";
    return "<a href=\"" + markup(slice.link) + "\" aria-label=\"" + markup(slice.words) + "\">" + title +
           shape + "</a>";
}

} // namespace

std::string wheelPicture(const std::string &name, const std::array<Slice, sliceCount> &slices)
{
    std::string picture =
        "<svg class=\"wheel\" viewBox=\"0 0 430 430\" role=\"group\" aria-label=\"" + markup(name) + "\">";
    for (std::size_t i = 0; i < sliceCount; ++i)
        picture += shape(slices.at(i), i);
    for (std::size_t i = 0; i < sliceCount; ++i)
        picture += label(slices.at(i), i);
    return picture + "</svg>";
}

} // namespace tarvex::pages
