#include "Decimal.h"

#include <charconv>

namespace tarvex::wire {

std::optional<std::int32_t> decimal32(std::string_view text)
{
    const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
    const bool hasSpareZero = digits.starts_with('0') && text != "0";
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (hasSpareZero || error != std::errc() || end != text.data() + text.size())
        return {};
    return value;
}

std::optional<std::int64_t> wireId(std::string_view text)
{
    const auto value = decimal32(text);
    if (!value || *value <= 0)
        return {};
    return *value;
}

} // namespace tarvex::wire
