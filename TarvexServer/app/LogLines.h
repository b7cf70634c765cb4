#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <spdlog/sinks/sink.h>
#include <stop_token>
#include <string>
#include <string_view>

namespace tarvex::app {

/// Lines that wait to be written, all at once: a line by itself costs more than the request it tells of. What
/// is too much to wait, or cannot be written, is lost and counted, and the log tells of that as soon as there
/// is room again.
class LogLines : public spdlog::sinks::sink
{
public:
    /// To a file, or to standard error if there is no path. Throws std::runtime_error.
    explicit LogLines(std::string path);
    ~LogLines() override;
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    void log(const spdlog::details::log_msg &message) override;
    void set_pattern(const std::string &pattern) override;
    void set_formatter(std::unique_ptr<spdlog::formatter> formatter) override;

    /// Writes what waits. From one thread only.
    void flush() override;
    /// Waits until there is something for flush() to do, or for the end.
    void waitForWork(const std::stop_token &stop);
    /// Has the next flush() open the file anew at its end, since the old one may have been moved away. If
    /// that fails, the old one goes on and the log says so.
    void reopen();
    std::uint64_t lost() const { return m_lost; }

private:
    void add(spdlog::level::level_enum level, const std::string &message, std::string &lines);
    void openAnew();

    const std::string m_path;
    int m_descriptor;
    std::atomic<std::uint64_t> m_lost = 0;
    std::mutex m_mutex;
    std::condition_variable_any m_isWork;
    std::unique_ptr<spdlog::formatter> m_formatter;
    std::string m_waiting;
    std::uint64_t m_untold = 0; // of those that were lost
    bool m_isToReopen = false;
};

} // namespace tarvex::app
