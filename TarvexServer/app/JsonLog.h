#pragma once

#include "Session.h"

#include <string>

namespace tarvex::app {

// The operator's log: JSON lines on standard error, one event a line. Nothing that came in a request ever
// enters it, nor where a request came from.

/// Writes on a thread of its own, so that a reader who is slow or has stopped holds up nobody; when too many
/// lines wait, the oldest are lost. Its end writes what waits or, if that cannot be done soon, ends the
/// process: it must be the last thing to go.
class Log
{
public:
    Log();
    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;
    ~Log();
};

void logEvent(const std::string &event);
void logRequest(const http::RequestReport &report);

} // namespace tarvex::app
