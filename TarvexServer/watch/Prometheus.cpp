#include "Prometheus.h"

#include <charconv>

namespace tarvex::watch {

namespace {

std::string seconds(std::chrono::microseconds time)
{
    std::array<char, 512> digits{}; // the longest there is has some 400
    const double value = std::chrono::duration<double>(time).count();
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    return {digits.data(), end};
}

} // namespace

void Prometheus::sample(const std::string &labels, std::uint64_t value)
{
    line("", labels, std::to_string(value));
}

void Prometheus::samples(const std::string &labels, const requests::Durations &durations)
{
    const std::string others = labels.empty() ? "" : labels + ",";
    std::uint64_t upToHere = 0;
    for (std::size_t i = 0; i < requests::Durations::bounds.size(); ++i) {
        upToHere += durations.count(i);
        line("_bucket", others + "le=\"" + seconds(requests::Durations::bounds[i]) + "\"",
             std::to_string(upToHere));
    }
    const std::string all = std::to_string(upToHere + durations.count(requests::Durations::bounds.size()));
    line("_bucket", others + "le=\"+Inf\"", all);
    line("_sum", labels, seconds(durations.sum()));
    line("_count", labels, all);
}

void Prometheus::begin(std::string_view name, std::string_view type, std::string_view help)
{
    m_name = name;
    m_text.append("# HELP ").append(name).append(" ").append(help).append("\n# TYPE ").append(name);
    m_text.append(" ").append(type).append("\n");
}

void Prometheus::line(std::string_view suffix, const std::string &labels, const std::string &value)
{
    m_text.append(m_name).append(suffix);
    if (!labels.empty())
        m_text.append("{").append(labels).append("}");
    m_text.append(" ").append(value).append("\n");
}

} // namespace tarvex::watch
