#include "JsonLog.h"

#include <algorithm>
#include <boost/json.hpp>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/sink.h>
#include <spdlog/spdlog.h>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tarvex::app {

namespace {

constexpr std::size_t largestWaiting = 1024UL * 1024; // bytes; what would be more is lost
constexpr std::chrono::milliseconds betweenWrites{100};
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

std::string quoted(const std::string &text)
{
    return boost::json::serialize(boost::json::string(text));
}

} // namespace

/// Lines that wait to be written, all at once: a line by itself costs more than the request it tells of.
class Log::Lines : public spdlog::sinks::sink
{
public:
    void log(const spdlog::details::log_msg &message) override
    {
        spdlog::memory_buf_t line;
        const std::lock_guard lock(m_mutex);
        m_formatter->format(message, line);
        if (m_waiting.empty())
            m_isOne.notify_one();
        if (m_waiting.size() + line.size() <= largestWaiting)
            m_waiting.append(line.data(), line.size());
    }
    /// Waits until there is a line, or for the end.
    void waitForOne(const std::stop_token &stop)
    {
        std::unique_lock lock(m_mutex);
        m_isOne.wait(lock, stop, [this] { return !m_waiting.empty(); });
    }
    void flush() override
    {
        std::string lines;
        {
            const std::lock_guard lock(m_mutex);
            lines.swap(m_waiting);
        }
        for (std::string_view rest = lines; !rest.empty();) {
            const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
            if (written < 0 && errno != EINTR)
                return; // nobody reads any more
            rest.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
    }
    void set_pattern(const std::string &pattern) override
    {
        set_formatter(std::make_unique<spdlog::pattern_formatter>(pattern));
    }
    void set_formatter(std::unique_ptr<spdlog::formatter> formatter) override
    {
        m_formatter = std::move(formatter);
    }

private:
    std::mutex m_mutex;
    std::condition_variable_any m_isOne;
    std::unique_ptr<spdlog::formatter> m_formatter;
    std::string m_waiting;
};

Log::Log() : m_lines(std::make_shared<Lines>()), m_writer([this](const std::stop_token &stop) { run(stop); })
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
        m_lines->waitForOne(stop);
        std::this_thread::sleep_for(betweenWrites); // while others come
        m_lines->flush();
    }
    m_isWritten.set_value();
}

// The pattern brings the braces. What is known to hold nothing odd goes without quoting: this is done for
// every request.

void logEvent(const std::string &event)
{
    spdlog::info(R"("event":{})", quoted(event));
}

void logRequest(const http::RequestReport &report)
{
    const bool isFault = report.outcome == requests::Outcome::Failed;
    spdlog::log(
        isFault ? spdlog::level::err : spdlog::level::info,
        R"("event":"request","kind":"{}","outcome":"{}","bytes_in":{},"bytes_out":{},"microseconds":{}{})",
        report.kind, nameOf(report.outcome), report.bytesIn, report.bytesOut, report.time.count(),
        report.cause.empty() ? "" : ",\"cause\":" + quoted(report.cause));
}

} // namespace tarvex::app
