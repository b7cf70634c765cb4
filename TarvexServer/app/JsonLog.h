#pragma once

#include "Session.h"

#include <string>

namespace tarvex::app {

// The operator's log: JSON lines on standard error, one event a line. Nothing that came in a request ever
// enters it, nor where a request came from.

void startLog();
void logEvent(const std::string &event);
void logRequest(const http::RequestReport &report);

} // namespace tarvex::app
