#include "Days.h"

#include "Times.h"

#include <charconv>
#include <chrono>

namespace tarvex::pages {

namespace {

/// The digits, all of them, as a number.
std::optional<unsigned> numberOf(std::string_view digits)
{
    unsigned number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(number)
                                                                        : std::nullopt;
}

} // namespace

std::string textOfDay(std::int64_t day)
{
    constexpr std::int64_t secondsPerDay = 24LL * 60 * 60;
    return wire::utcDay(day * secondsPerDay);
}

std::optional<std::int64_t> dayOfText(std::string_view text)
{
    constexpr std::size_t size = std::string_view("2026-11-22").size();
    if (text.size() != size || text[4] != '-' || text[7] != '-')
        return {};
    const auto year = numberOf(text.substr(0, 4));
    const auto month = numberOf(text.substr(5, 2));
    const auto day = numberOf(text.substr(8));
    if (!year || !month || !day)
        return {};
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(*month), std::chrono::day(*day));
    if (!date.ok() || *year < 1970)
        return {};
    return std::chrono::sys_days(date).time_since_epoch().count();
}

} // namespace tarvex::pages
