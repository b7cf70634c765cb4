#include "ProgressChart.h"

#include "Days.h"
#include "SampleRows.h"

#include <boost/algorithm/string/join.hpp>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

constexpr store::OfAreas full = {100, 100, 100, 100, 100, 100, 100, 100};

pages::ProgressChart chartOf(std::int64_t firstDay, std::int64_t lastDay)
{
    pages::ProgressChart chart;
    chart.id = "chart";
    chart.title = "Progress";
    chart.firstDay = firstDay;
    chart.lastDay = lastDay;
    for (pages::ProgressChart::Area &area : chart.areas)
        area = {.name = "Health", .color = "#123456"};
    return chart;
}

store::DayOfAreas dayWith(std::int64_t day, std::int32_t first)
{
    store::DayOfAreas made{.day = day, .numbers = full};
    made.numbers[0] = first;
    return made;
}

std::string firstLine(const std::string &svg)
{
    return matches(svg, "id=\"chart-line-1\" d=\"([^\"]*)").at(0);
}

} // namespace

TEST(ProgressChart, HoldsEachPercentUntilTheNext)
{
    pages::ProgressChart chart = chartOf(/*firstDay=*/100, /*lastDay=*/109);
    chart.days = {dayWith(90, 0), dayWith(103, 0), dayWith(105, 50)};
    const std::string svg = svgOf(chart);
    EXPECT_EQ(firstLine(svg), "M52 307H252V157H452");
    EXPECT_NE(svg.find("d=\"M52 53H252V35H452\""), std::string::npos) << svg; // the average, 87 and 93
    EXPECT_NE(
        svg.find("From 11 Apr 1970 to 20 Apr 1970. Average: from 87 to 93 percent. Health: 100 percent."),
        std::string::npos)
        << svg;
    EXPECT_NE(svg.find("Health: from 0 to 50 percent."), std::string::npos) << svg;

    chart.days = {dayWith(109, 0)};
    EXPECT_EQ(firstLine(svgOf(chart)), "M412 307H452"); // the last day is as long as any
}

TEST(ProgressChart, OfManyDaysIsShortAndKeepsWhatReachesFurthest)
{
    constexpr std::int64_t days = 3650;
    pages::ProgressChart chart = chartOf(/*firstDay=*/0, days - 1);
    for (std::int32_t day = 0; day < days; ++day) {
        store::DayOfAreas made{.day = day, .numbers = {}};
        for (std::int32_t &percent : made.numbers)
            percent = day == 0          ? 7
                      : day == 1234     ? 100
                      : day == 2345     ? 0
                      : day == days - 1 ? 9
                                        : 30 + day % 40;
        chart.days.push_back(made);
    }
    const std::string svg = svgOf(chart);
    EXPECT_LT(svg.size(), 20'000);
    const auto heights = matches(firstLine(svg), "V(-?[0-9]+)");
    EXPECT_LE(heights.size(), 200);
    EXPECT_GE(heights.size(), 120);
    EXPECT_TRUE(firstLine(svg).starts_with("M52 286H"));
    EXPECT_EQ(heights.back(), "280");
    for (const char *height : {"7", "307"})
        EXPECT_EQ(std::count(heights.begin(), heights.end(), height), 1) << height;
}

TEST(ProgressChart, TakesNoWordForMarkupAndCutsNoCharacter)
{
    pages::ProgressChart chart = chartOf(0, 9);
    chart.title = "</title><script>\"&";
    chart.days = {dayWith(0, 40)};
    chart.areas[0].name = "<b>&amp;\"";
    chart.areas[1].name = std::string(23, 'x') + "\u00e9\u00e9";
    chart.areas[2].name =
        "\u5bb6\u5ead\u5bb6\u5ead\u5bb6\u5ead\u5bb6\u5ead\u5bb6\u5ead\u5bb6\u5ead\u5bb6\u5ead";
    const std::string svg = svgOf(chart);
    EXPECT_EQ(svg.find("<script"), std::string::npos);
    EXPECT_EQ(svg.find("<b>"), std::string::npos);
    EXPECT_EQ(svg.find(" style="), std::string::npos);
    EXPECT_NE(svg.find(">1 &lt;b&gt;&amp;amp;&quot;</text>"), std::string::npos) << svg;
    EXPECT_NE(svg.find(">2 " + std::string(23, 'x') + "\u00e9\u2026</text>"), std::string::npos) << svg;
    EXPECT_NE(svg.find(">3 " + chart.areas[2].name.substr(0, 36) + "\u2026</text>"), std::string::npos)
        << svg;
    EXPECT_NE(svg.find(chart.areas[2].name + ":"), std::string::npos); // told as a whole
}

TEST(ProgressChart, CountsItsDaysAsPeopleDo)
{
    for (const SampleRow &row : sampleRows("chart-ticks.txt")) {
        const std::string svg =
            svgOf(chartOf(pages::dayOfText(row[0]).value(), pages::dayOfText(row[1]).value()));
        const auto ticks = matches(svg, "y=\"338\" text-anchor=\"[a-z]+\">([^<]*)");
        EXPECT_EQ(boost::algorithm::join(ticks, ","), row[2]) << row[0] << row[1];
    }
}

TEST(ProgressChart, NumbersLinesThatEndTogetherOneBelowTheOther)
{
    for (const std::int32_t percent : {0, 50, 100}) {
        pages::ProgressChart chart = chartOf(0, 9);
        chart.days = {{.day = 0, .numbers = {}}};
        chart.days[0].numbers.fill(percent);
        std::vector<int> places;
        for (const std::string &y : matches(svgOf(chart), "x=\"460\" y=\"([0-9]+)\""))
            places.push_back(std::stoi(y));
        ASSERT_EQ(places.size(), 9U);
        for (std::size_t i = 1; i < places.size(); ++i)
            EXPECT_GE(places[i], places[i - 1] + 15) << percent;
        EXPECT_GE(places.front(), 14);
        EXPECT_LE(places.back(), 320);
    }
}

TEST(ProgressChart, OfNothingSaysSo)
{
    const std::string svg = svgOf(chartOf(0, 9));
    EXPECT_NE(svg.find("Nothing is known of these days."), std::string::npos);
    EXPECT_EQ(svg.find("line-1"), std::string::npos);
}
