#include "JsonLog.h"

#include <boost/json.hpp>
#include <chrono>
#include <cstdlib>
#include <spdlog/spdlog.h>
#include <string_view>

namespace tarvex::app {

namespace {

using requests::Outcome;

constexpr std::chrono::milliseconds betweenWrites{100};
constexpr std::chrono::seconds endTime{2};

spdlog::level::level_enum levelOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Failed:
        return spdlog::level::err;
    case Outcome::TooManyAttempts:
    case Outcome::Busy:
    case Outcome::TooLarge:
        return spdlog::level::warn;
    default:
        return spdlog::level::info;
    }
}

std::string inQuotes(std::string_view text)
{
    return boost::json::serialize(boost::json::string(text));
}

/// A further member, if there is anything to say.
std::string member(std::string_view name, std::string_view text)
{
    return text.empty() ? "" : ",\"" + std::string(name) + "\":" + inQuotes(text);
}

} // namespace

Log::Log(const std::string &path)
    : m_lines(std::make_shared<LogLines>(path)), m_writer([this](const std::stop_token &stop) { run(stop); })
{
    auto logger = std::make_shared<spdlog::logger>("tarvex-server", m_lines);
    logger->set_pattern(R"({"time":"%Y-%m-%dT%H:%M:%S.%e%z","level":"%l",%v})");
    spdlog::set_default_logger(logger);
}

Log::~Log()
{
    m_writer.request_stop();
    if (m_isWritten.get_future().wait_for(endTime) != std::future_status::ready)
        std::_Exit(EXIT_SUCCESS); // nobody reads the rest, and the thread that writes it cannot be woken
}

void Log::run(const std::stop_token &stop)
{
    while (!stop.stop_requested()) {
        m_lines->waitForWork(stop);
        std::this_thread::sleep_for(betweenWrites); // while others come
        m_lines->flush();
    }
    m_isWritten.set_value();
}

void setLogLevel(spdlog::level::level_enum level)
{
    spdlog::default_logger()->set_level(level);
}

// The pattern brings the braces. What is known to hold nothing odd goes without quoting: this is done for
// every request.

void logEvent(const std::string &event)
{
    spdlog::info(R"("event":{})", inQuotes(event));
}

void logFault(const std::string &event, const std::string &cause)
{
    spdlog::error(R"("event":{},"cause":{})", inQuotes(event), inQuotes(cause));
}

void Log::request(const http::RequestReport &report)
{
    const auto level = levelOf(report.outcome);
    ++m_requests;
    if (!spdlog::should_log(level))
        return;
    spdlog::log(
        level,
        R"("event":"request","id":"{}-{}","peer":"{}","kind":"{}","outcome":"{}","bytes_in":{},"bytes_out":{},"microseconds":{}{}{})",
        m_idPrefix, m_requests, report.peer.empty() ? "local" : m_peerMark(report.peer), report.kind,
        requests::outcomes[static_cast<std::size_t>(report.outcome)], report.bytesIn, report.bytesOut,
        report.time.count(), member("reason", requests::reasons[static_cast<std::size_t>(report.reason)]),
        member("cause", report.cause));
}

} // namespace tarvex::app
