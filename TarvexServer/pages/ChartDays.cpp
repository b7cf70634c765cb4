#include "ChartDays.h"

#include <array>
#include <chrono>

namespace tarvex::pages {

namespace {

using std::chrono::days;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::year_month;
using std::chrono::year_month_day;

std::string monthOf(year_month_day date)
{
    constexpr std::array<const char *, 12> names = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return names.at(static_cast<unsigned>(date.month()) - 1);
}

std::string yearOf(year_month_day date)
{
    return std::to_string(static_cast<int>(date.year()));
}

std::string dayOf(year_month_day date)
{
    return std::to_string(static_cast<unsigned>(date.day())) + " " + monthOf(date);
}

year_month_day dateOf(std::int64_t day)
{
    return sys_days(days(day));
}

std::vector<Tick> dayTicks(std::int64_t firstDay, std::int64_t lastDay, std::int64_t step)
{
    std::vector<Tick> ticks;
    for (std::int64_t day = firstDay; day <= lastDay; day += step)
        ticks.push_back({.day = day, .text = dayOf(dateOf(day))});
    return ticks;
}

/// At the beginnings of every so many months.
std::vector<Tick> monthTicks(std::int64_t firstDay, std::int64_t lastDay, int step)
{
    constexpr int monthsPerYear = 12;
    const year_month_day first = dateOf(firstDay);
    const int begun = static_cast<int>(static_cast<unsigned>(first.month())) - 1;
    year_month next = first.year() / std::chrono::January;
    if (step < monthsPerYear)
        next += months(begun - begun % step);
    else
        next -= months(monthsPerYear * (static_cast<int>(first.year()) % (step / monthsPerYear)));
    std::vector<Tick> ticks;
    for (;; next += months(step)) {
        const year_month_day date = next / 1;
        const std::int64_t day = sys_days(date).time_since_epoch().count();
        if (day > lastDay)
            return ticks;
        if (day >= firstDay)
            ticks.push_back(
                {.day = day,
                 .text = (step < monthsPerYear ? monthOf(date) + " " : std::string()) + yearOf(date)});
    }
}

} // namespace

std::vector<Tick> ticksOf(std::int64_t firstDay, std::int64_t lastDay)
{
    constexpr std::int64_t most = 6;
    const std::int64_t span = lastDay - firstDay;
    for (const std::int64_t step : {1, 2, 7, 14})
        if (span / step < most)
            return dayTicks(firstDay, lastDay, step);
    constexpr std::int64_t daysPerMonth = 30;
    for (const int step : {1, 3, 6, 12, 24, 60})
        if (span / (step * daysPerMonth) < most)
            return monthTicks(firstDay, lastDay, step);
    constexpr int decade = 120;
    const auto decades = static_cast<int>(span / (decade * daysPerMonth * most)) + 1;
    return monthTicks(firstDay, lastDay, decades * decade);
}

std::string fullDate(std::int64_t day)
{
    return dayOf(dateOf(day)) + " " + yearOf(dateOf(day));
}

} // namespace tarvex::pages
