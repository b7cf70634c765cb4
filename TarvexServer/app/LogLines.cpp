#include "LogLines.h"

#include "Output.h"

#include <algorithm>
#include <boost/json.hpp>
#include <cerrno>
#include <fcntl.h>
#include <spdlog/pattern_formatter.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tarvex::app {

namespace {

constexpr std::size_t largestWaiting = 1024UL * 1024; // bytes

/// A descriptor of the file, or a negative number and errno.
int openFile(const std::string &path)
{
    return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY,
                  S_IRUSR | S_IWUSR | S_IRGRP);
}

std::string reasonOf(int error)
{
    return std::generic_category().message(error);
}

} // namespace

LogLines::LogLines(std::string path)
    : m_path(std::move(path)), m_descriptor(m_path.empty() ? STDERR_FILENO : openFile(m_path))
{
    if (m_descriptor < 0)
        throw std::runtime_error("The log file " + m_path + " cannot be opened: " + reasonOf(errno) + ".");
}

LogLines::~LogLines()
{
    if (!m_path.empty())
        ::close(m_descriptor);
}

void LogLines::log(const spdlog::details::log_msg &message)
{
    spdlog::memory_buf_t line;
    const std::lock_guard lock(m_mutex);
    m_formatter->format(message, line);
    if (m_waiting.empty())
        m_isWork.notify_one();
    if (m_waiting.size() + line.size() <= largestWaiting) {
        m_waiting.append(line.data(), line.size());
        return;
    }
    ++m_lost;
    ++m_untold;
}

void LogLines::set_pattern(const std::string &pattern)
{
    set_formatter(std::make_unique<spdlog::pattern_formatter>(pattern));
}

void LogLines::set_formatter(std::unique_ptr<spdlog::formatter> formatter)
{
    m_formatter = std::move(formatter);
}

void LogLines::waitForWork(const std::stop_token &stop)
{
    std::unique_lock lock(m_mutex);
    m_isWork.wait(lock, stop, [this] { return m_isToReopen || !m_waiting.empty(); });
}

void LogLines::flush()
{
    std::string lines;
    std::uint64_t told = 0;
    {
        const std::lock_guard lock(m_mutex);
        lines.swap(m_waiting);
        told = std::exchange(m_untold, 0);
        if (told > 0)
            add(spdlog::level::warn, R"("event":"log lines lost","lines":)" + std::to_string(told), lines);
    }
    // Some are left when the disk is full, or when nobody reads any more.
    const std::string_view rest = std::string_view(lines).substr(writeOut(m_descriptor, lines));
    const std::lock_guard lock(m_mutex);
    if (!rest.empty()) {
        const auto unwritten = static_cast<std::uint64_t>(std::count(rest.begin(), rest.end(), '\n'));
        const std::uint64_t lost = unwritten - (told > 0 ? 1 : 0); // without the line that told
        m_lost += lost;
        m_untold += told + lost;
    }
    if (std::exchange(m_isToReopen, false))
        openAnew();
}

void LogLines::reopen()
{
    const std::lock_guard lock(m_mutex);
    m_isToReopen = true;
    m_isWork.notify_one();
}

/// Adds a line of the log's own.
void LogLines::add(spdlog::level::level_enum level, const std::string &message, std::string &lines)
{
    spdlog::memory_buf_t line;
    m_formatter->format(spdlog::details::log_msg("", level, message), line);
    lines.append(line.data(), line.size());
}

void LogLines::openAnew()
{
    if (m_path.empty())
        return;
    const int descriptor = openFile(m_path);
    if (descriptor < 0) {
        const std::string cause = boost::json::serialize(boost::json::string(reasonOf(errno)));
        add(spdlog::level::err, R"("event":"log file not reopened","cause":)" + cause, m_waiting);
        return;
    }
    ::close(std::exchange(m_descriptor, descriptor));
}

} // namespace tarvex::app
