#pragma once

#include "Condition.h"
#include "Server.h"
#include "Service.h"

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>

namespace tarvex::watch {

/// What the metrics tell of; must outlive their use.
struct Watched
{
    const store::Database &database;
    const requests::Service &service;
    const http::Server &server;
    Condition &condition;
    std::function<std::uint64_t()> lostLogLines;
    std::string version;
    std::time_t startedAt = std::time(nullptr);
};

/// All metrics, as Prometheus reads them. For the thread that asks the condition, which it does.
std::string metricsText(const Watched &watched);

} // namespace tarvex::watch
