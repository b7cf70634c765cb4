#include "JsonLog.h"

#include <boost/json.hpp>
#include <chrono>
#include <cstdlib>
#include <future>
#include <spdlog/async.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <thread>

namespace tarvex::app {

namespace {

constexpr std::size_t waitingLines = 4096; // beyond these the oldest are lost
constexpr std::chrono::seconds endTime{2};

const char *nameOf(requests::Outcome outcome)
{
    switch (outcome) {
    case requests::Outcome::Done:
        return "done";
    case requests::Outcome::Invalid:
        return "invalid";
    case requests::Outcome::NotSignedIn:
        return "not-signed-in";
    case requests::Outcome::TooManyAttempts:
        return "too-many-attempts";
    case requests::Outcome::Busy:
        return "busy";
    case requests::Outcome::TooLarge:
        return "too-large";
    case requests::Outcome::Failed:
        break;
    }
    return "failed";
}

void log(spdlog::level::level_enum level, const boost::json::object &fields)
{
    const std::string text = boost::json::serialize(fields);
    spdlog::log(level, "{}", text.substr(1, text.size() - 2)); // the pattern brings the braces
}

} // namespace

Log::Log()
{
    spdlog::init_thread_pool(waitingLines, /*threads_n=*/1);
    auto logger = spdlog::create_async_nb<spdlog::sinks::stderr_sink_mt>("tarvex-server");
    logger->set_pattern(R"({"time":"%Y-%m-%dT%H:%M:%S.%e%z","level":"%l",%v})");
    spdlog::set_default_logger(logger);
}

Log::~Log()
{
    std::promise<void> written;
    auto isWritten = written.get_future();
    std::thread([written = std::move(written)]() mutable {
        spdlog::shutdown();
        written.set_value();
    }).detach();
    if (isWritten.wait_for(endTime) != std::future_status::ready)
        std::_Exit(EXIT_SUCCESS); // nobody reads the rest, and the thread that writes it cannot be woken
}

void logEvent(const std::string &event)
{
    log(spdlog::level::info, {{"event", event}});
}

void logRequest(const http::RequestReport &report)
{
    const bool isFault = report.outcome == requests::Outcome::Failed;
    boost::json::object fields = {{"event", "request"},
                                  {"kind", boost::json::string_view(report.kind.data(), report.kind.size())},
                                  {"outcome", nameOf(report.outcome)},
                                  {"bytes_in", report.bytesIn},
                                  {"bytes_out", report.bytesOut},
                                  {"microseconds", report.time.count()}};
    if (!report.cause.empty())
        fields["cause"] = report.cause;
    log(isFault ? spdlog::level::err : spdlog::level::info, fields);
}

} // namespace tarvex::app
