#pragma once

#include "Commands.h"
#include "Proxies.h"
#include "SignUpRules.h"
#include "Site.h"

#include <CLI/App.hpp>
#include <cstdint>
#include <memory>
#include <spdlog/common.h>
#include <string>
#include <vector>

namespace tarvex::app {

/// What the command serve is told.
struct ServeOptions
{
    std::string listen = "127.0.0.1:8717";
    std::vector<std::string> trustedProxies;
    http::Proxies::Source proxySource = http::Proxies::Source::ForwardedFor;
    std::size_t proxyHops = 1;
    requests::SignUpRules signUpRules;
    // MiB
    std::uintmax_t keptFree = 64;
    std::uintmax_t largest = 64UL * 1024;
    bool withoutCopy = false;
    std::string watch; ///< where those who watch are answered; empty for nowhere
    bool isWatchedFromAnywhere = false;
    enum class Pages { Here, On, Off };
    Pages pages = Pages::Here;
    pages::SiteLinks links;
    spdlog::level::level_enum logLevel = spdlog::level::info;
    std::string logFile; ///< empty for standard error

    /// Whether the service has pages when it listens there.
    bool hasPages(const std::string &host) const;

    http::Proxies proxies() const;
};

std::shared_ptr<const ServeOptions> addServeOptions(CLI::App &command);

/// Reads the command line again, and with it the file of settings that it names. Throws a std::exception
/// whose text is for the operator.
ServeOptions readAgain(const CommandLine &line);

} // namespace tarvex::app
