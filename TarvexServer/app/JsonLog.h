#pragma once

#include "Session.h"

#include <future>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>

namespace tarvex::app {

// The operator's log: JSON lines on standard error, one event a line. Nothing that came in a request ever
// enters it, nor where a request came from.

/// Writes a few times a second, on a thread of its own, so that a reader who is slow or has stopped holds up
/// nobody; when too much waits, further lines are lost. Its end writes what waits or, if that cannot be done
/// soon, ends the process: it must be the last thing to go.
class Log
{
public:
    Log();
    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;
    ~Log();

private:
    class Lines;

    void run(const std::stop_token &stop);

    std::shared_ptr<Lines> m_lines;
    std::promise<void> m_isWritten;
    std::jthread m_writer; // the last, since it uses the others
};

void logEvent(const std::string &event);
void logRequest(const http::RequestReport &report);

} // namespace tarvex::app
