#include "JsonLog.h"

#include <boost/json.hpp>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

namespace tarvex::app {

namespace {

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

void startLog()
{
    auto logger = spdlog::stderr_logger_mt("tarvex-server");
    logger->set_pattern(R"({"time":"%Y-%m-%dT%H:%M:%S.%e%z","level":"%l",%v})");
    spdlog::set_default_logger(logger);
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
