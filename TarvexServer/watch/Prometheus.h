#pragma once

#include "Measures.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarvex::watch {

/// Writes metrics as Prometheus reads them: its text format, version 0.0.4. Names and labels are ours alone,
/// so nothing is escaped.
class Prometheus
{
public:
    static constexpr std::string_view contentType = "text/plain; version=0.0.4; charset=utf-8";

    // Each family is begun before its samples.

    void counter(std::string_view name, std::string_view help) { begin(name, "counter", help); }
    void gauge(std::string_view name, std::string_view help) { begin(name, "gauge", help); }
    void histogram(std::string_view name, std::string_view help) { begin(name, "histogram", help); }

    /// The labels are as they stand between the braces.
    void sample(const std::string &labels, std::uint64_t value);
    void samples(const std::string &labels, const requests::Durations &durations);

    const std::string &text() const { return m_text; }

private:
    void begin(std::string_view name, std::string_view type, std::string_view help);
    void line(std::string_view suffix, const std::string &labels, const std::string &value);

    std::string m_name;
    std::string m_text;
};

} // namespace tarvex::watch
