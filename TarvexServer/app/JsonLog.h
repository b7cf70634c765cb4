#pragma once

#include "LogLines.h"
#include "PeerMark.h"
#include "Session.h"

#include <cstdint>
#include <future>
#include <memory>
#include <spdlog/common.h>
#include <string>
#include <thread>

namespace tarvex::app {

// The operator's log: JSON lines, one event a line. Nothing that came in a request ever enters it; where a
// request came from does as a mark that ends with the process.

/// Writes a few times a second, on a thread of its own, so that a reader who is slow or has stopped holds up
/// nobody; when too much waits, further lines are lost. Its end writes what waits or, if that cannot be done
/// soon, ends the process: it must be the last thing to go.
class Log
{
public:
    /// To a file, or to standard error if there is no path. Throws std::runtime_error.
    explicit Log(const std::string &path = "");
    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;
    ~Log();

    /// A line on a request, with an id that no other has. For one thread.
    void request(const http::RequestReport &report);
    /// Writes to the file of that name from now on, be it another one by now.
    void reopen() { m_lines->reopen(); }
    std::uint64_t lostLines() const { return m_lines->lost(); }

private:
    void run(const std::stop_token &stop);

    const security::PeerMark m_peerMark;
    const std::string m_idPrefix = security::randomMark();
    std::uint64_t m_requests = 0;
    std::shared_ptr<LogLines> m_lines;
    std::promise<void> m_isWritten;
    std::jthread m_writer; // the last, since it uses the others
};

/// Of lesser events nothing is written from now on.
void setLogLevel(spdlog::level::level_enum level);

void logEvent(const std::string &event);
/// That something which was asked for could not be done, and a sentence why.
void logFault(const std::string &event, const std::string &cause);

} // namespace tarvex::app
