#include "ProgressChart.h"

#include "ChartDays.h"
#include "Templates.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace tarvex::pages {

namespace {

// The picture, in its own units, of which y runs down. All places are whole numbers, which keeps it short.
constexpr int width = 480;
constexpr int left = 52;
constexpr int right = 452; // behind it are the numbers of the lines
constexpr int top = 14;
constexpr int perPercent = 3;
constexpr int bottom = top + 100 * perPercent;
constexpr int legendTop = bottom + 50;
constexpr int legendLine = 24;
constexpr int legendColumns = 2;
constexpr int betweenLines = 2; // of areas that come to the same, so that all are seen side by side
constexpr int betweenNumbers = 15;

constexpr std::size_t mostPoints = 200;
constexpr std::size_t lineCount = 9;
constexpr std::size_t average = lineCount - 1; // is the last of the lines
constexpr int legendRows = (static_cast<int>(lineCount) + legendColumns - 1) / legendColumns;

/// A line holds its percent from here to the next point.
struct Point
{
    std::int64_t day = 0;
    std::int32_t percent = 0;
};

using Line = std::vector<Point>;

/// A chart and its lines, of which there are none without a day.
struct Drawing
{
    const ProgressChart &chart;
    std::vector<Line> lines;
};

/// An element; the attributes are ours and need no escaping.
std::string element(const std::string &name, const std::string &attributes, const std::string &content = "")
{
    return "<" + name + (attributes.empty() ? "" : " ") + attributes +
           (content.empty() ? "/>" : ">" + content + "</" + name + ">");
}

std::string attribute(const std::string &name, const std::string &value)
{
    return name + "=\"" + value + "\"";
}

std::string attribute(const std::string &name, std::int64_t value)
{
    return attribute(name, std::to_string(value));
}

std::string place(std::int64_t x, std::int64_t y)
{
    return attribute("x", x) + " " + attribute("y", y);
}

// The lines

Line lineOf(const ProgressChart &chart, std::size_t index)
{
    Line line;
    line.reserve(chart.days.size());
    for (const store::DayOfAreas &day : chart.days) {
        const std::int32_t percent = index == average ? averageOf(day.numbers) : day.numbers.at(index);
        if (line.empty() || line.back().percent != percent)
            line.push_back({.day = std::max(day.day, chart.firstDay), .percent = percent});
    }
    return line;
}

/// Of each of as many stretches as there is room for, the lowest point, the highest and the last.
Line thinned(const Line &line)
{
    if (line.size() <= mostPoints)
        return line;
    constexpr std::size_t stretches = (mostPoints - 1) / 3;
    Line kept = {line.front()};
    for (std::size_t i = 0; i < stretches; ++i) {
        const auto begin = line.begin() + static_cast<std::ptrdiff_t>(line.size() * i / stretches);
        const auto end = line.begin() + static_cast<std::ptrdiff_t>(line.size() * (i + 1) / stretches);
        const auto [lowest, highest] = std::minmax_element(
            begin, end, [](const Point &a, const Point &b) { return a.percent < b.percent; });
        for (const auto &point : {std::min(lowest, highest), std::max(lowest, highest), end - 1})
            if (point->day > kept.back().day)
                kept.push_back(*point);
    }
    return kept;
}

std::vector<Line> linesOf(const ProgressChart &chart)
{
    std::vector<Line> lines;
    for (std::size_t i = 0; i < lineCount && !chart.days.empty(); ++i)
        lines.push_back(thinned(lineOf(chart, i)));
    return lines;
}

/// Where a day begins.
std::int64_t xOf(const ProgressChart &chart, std::int64_t day)
{
    return left + (day - chart.firstDay) * (right - left) / (chart.lastDay - chart.firstDay + 1);
}

std::int64_t yOf(std::size_t index, std::int32_t percent)
{
    const int middle = static_cast<int>(average) - 1;
    const int shift = index == average ? 0 : betweenLines * static_cast<int>(index) - middle;
    return bottom - static_cast<std::int64_t>(perPercent) * percent + shift;
}

std::string pathOf(const Drawing &drawing, std::size_t index)
{
    std::string path;
    for (const Point &point : drawing.lines[index]) {
        const bool isFirst = path.empty();
        path += isFirst ? 'M' : 'H';
        path += std::to_string(xOf(drawing.chart, point.day));
        path += isFirst ? ' ' : 'V';
        path += std::to_string(yOf(index, point.percent));
    }
    return path + "H" + std::to_string(right);
}

std::string lineId(const ProgressChart &chart, std::size_t index)
{
    return chart.id + "-line-" + std::to_string(index + 1);
}

/// The ink of the page under each colour sets pale ones off against any paper. Where lines are crowded they
/// are thin.
std::string drawnLines(const Drawing &drawing)
{
    constexpr std::size_t manyPoints = 60;
    const bool areThin = std::any_of(drawing.lines.begin(), drawing.lines.end(),
                                     [](const Line &line) { return line.size() > manyPoints; });
    std::string shapes;
    std::string edges;
    std::string colors;
    for (std::size_t i = 0; i < average; ++i) {
        const std::string id = lineId(drawing.chart, i);
        const std::string use = attribute("href", "#" + id);
        shapes += element("path", attribute("id", id) + " " + attribute("d", pathOf(drawing, i)));
        edges += element("use", use);
        colors += element("use", use + " " + attribute("stroke", markup(drawing.chart.areas.at(i).color)));
    }
    const std::string edge = attribute("stroke-width", areThin ? "2" : "4");
    const std::string color = attribute("stroke-width", areThin ? "1" : "2");
    const std::string middle = attribute("stroke-width", areThin ? "2" : "3");
    return element("defs", "", shapes) +
           element("g", R"(fill="none" stroke-linejoin="round")",
                   element("g", R"(stroke="currentColor" stroke-opacity="0.6" )" + edge, edges) +
                       element("g", color, colors) +
                       element("path", R"(stroke="currentColor" stroke-dasharray="8 4" )" + middle + " " +
                                           attribute("d", pathOf(drawing, average))));
}

std::string nameOf(const ProgressChart &chart, std::size_t index)
{
    return index == average ? "Average" : chart.areas.at(index).name;
}

std::string numberOf(std::size_t index)
{
    return index == average ? "\u2300" : std::to_string(index + 1);
}

/// The lines' numbers where they end, as near as they can be without covering each other.
std::string drawnNumbers(const Drawing &drawing)
{
    std::vector<std::pair<std::int64_t, std::size_t>> ends;
    for (std::size_t i = 0; i < lineCount; ++i)
        ends.emplace_back(yOf(i, drawing.lines[i].back().percent), i);
    std::sort(ends.begin(), ends.end(), std::greater<>());
    std::int64_t lowest = bottom; // from below, each one above the one before
    for (auto &[y, index] : ends) {
        y = std::min(y, lowest);
        lowest = y - betweenNumbers;
    }
    std::reverse(ends.begin(), ends.end());
    std::int64_t highest = top; // and those that went too far down again
    std::string numbers;
    for (auto &[y, index] : ends) {
        y = std::max(y, highest);
        highest = y + betweenNumbers;
        numbers += element("text", place(right + 8, y + 4), numberOf(index));
    }
    return numbers;
}

// The axes

std::string drawnAxes(const ProgressChart &chart)
{
    std::string grid;
    std::string texts;
    constexpr std::int32_t step = 25;
    for (std::int32_t percent = 0; percent <= 100; percent += step) {
        const auto y = std::to_string(yOf(average, percent));
        grid += "M" + std::to_string(left) + " " + y + "H" + std::to_string(right);
        texts += element("text", place(left - 6, yOf(average, percent) + 4) + R"( text-anchor="end")",
                         std::to_string(percent) + "%");
    }
    for (const Tick &tick : ticksOf(chart.firstDay, chart.lastDay)) {
        const std::int64_t x = xOf(chart, tick.day);
        grid += "M" + std::to_string(x) + " " + std::to_string(bottom) + "v8";
        const char *const anchor = x > right - 20 ? "end" : "middle";
        texts += element("text", place(x, bottom + 24) + " " + attribute("text-anchor", anchor), tick.text);
    }
    return element("path",
                   R"(fill="none" stroke="currentColor" stroke-opacity="0.35" )" + attribute("d", grid)) +
           texts;
}

// The words

/// As much of a text as has room in a column. Signs of the East take twice that of others.
std::string shortened(const std::string &text)
{
    constexpr int room = 24;
    constexpr unsigned char continuation = 0x80;
    constexpr unsigned char beginning = 0xC0;
    constexpr unsigned char wide = 0xE1;
    int taken = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= continuation && byte < beginning)
            continue;
        taken += byte >= wide ? 2 : 1;
        if (taken > room)
            return text.substr(0, i) + "\u2026";
    }
    return text;
}

std::string legend(const ProgressChart &chart)
{
    constexpr int sampleWidth = 18;
    std::string entries;
    for (std::size_t i = 0; i < lineCount; ++i) {
        const int x = left - 30 + static_cast<int>(i) / legendRows * (width - left) / legendColumns;
        const int y = legendTop + static_cast<int>(i) % legendRows * legendLine;
        const std::string sample = attribute("d", "M" + std::to_string(x) + " " + std::to_string(y - 4) +
                                                      "h" + std::to_string(sampleWidth));
        if (i == average)
            entries +=
                element("path", R"(stroke="currentColor" stroke-width="3" stroke-dasharray="8 2" )" + sample);
        else
            entries +=
                element("path", R"(stroke="currentColor" stroke-opacity="0.6" stroke-width="6" )" + sample) +
                element("path", R"(stroke-width="4" )" +
                                    attribute("stroke", markup(chart.areas.at(i).color)) + " " + sample);
        entries += element("text", place(x + sampleWidth + 6, y),
                           numberOf(i) + " " + markup(shortened(nameOf(chart, i))));
    }
    return entries;
}

std::string description(const Drawing &drawing)
{
    const ProgressChart &chart = drawing.chart;
    std::string text = "From " + fullDate(chart.firstDay) + " to " + fullDate(chart.lastDay) + ". ";
    if (drawing.lines.empty())
        return text + "Nothing is known of these days.";
    for (std::size_t i = lineCount; i-- > 0;) { // the average first
        const Line &line = drawing.lines[i];
        const std::string end = std::to_string(line.back().percent) + " percent. ";
        text += nameOf(chart, i) + ": ";
        text += line.size() == 1 ? end : "from " + std::to_string(line.front().percent) + " to " + end;
    }
    text.pop_back();
    return text;
}

} // namespace

std::string svgOf(const ProgressChart &chart)
{
    const Drawing drawing{.chart = chart, .lines = linesOf(chart)};
    const std::string height = std::to_string(legendTop + legendRows * legendLine - 8);
    const std::string titleId = chart.id + "-title";
    const std::string textId = chart.id + "-text";
    return element(
        "svg",
        R"(class="chart" xmlns="http://www.w3.org/2000/svg" role="img" fill="currentColor" font-size="15" )" +
            attribute("viewBox", "0 0 " + std::to_string(width) + " " + height) + " " +
            attribute("aria-labelledby", titleId) + " " + attribute("aria-describedby", textId),
        element("title", attribute("id", titleId), markup(chart.title)) +
            element("desc", attribute("id", textId), markup(description(drawing))) + drawnAxes(chart) +
            (drawing.lines.empty() ? "" : drawnLines(drawing) + drawnNumbers(drawing)) + legend(chart));
}

std::int32_t averageOf(const store::OfAreas &percents)
{
    return std::accumulate(percents.begin(), percents.end(), 0) / static_cast<std::int32_t>(percents.size());
}

} // namespace tarvex::pages
