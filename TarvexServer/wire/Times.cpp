#include "Times.h"

#include <array>
#include <ctime>

namespace tarvex::wire {

std::string utcTime(std::int64_t seconds)
{
    constexpr std::size_t longest = 64; // with a year of any length
    const std::time_t time = seconds;
    std::tm parts{};
    if (::gmtime_r(&time, &parts) == nullptr)
        return "?"; // beyond what has a calendar
    std::array<char, longest> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

std::string utcDay(std::int64_t seconds)
{
    const std::string time = utcTime(seconds);
    return time.substr(0, time.find('T'));
}

} // namespace tarvex::wire
