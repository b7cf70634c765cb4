#include "Commands.h"
#include "Condition.h"
#include "InstallationOptions.h"
#include "JsonLog.h"
#include "ListenAddress.h"
#include "MetricsText.h"
#include "Prometheus.h"
#include "ServeOptions.h"
#include "Server.h"
#include "ServiceManager.h"
#include "Site.h"
#include "WatchServer.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <string>
#include <sys/resource.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace tarvex::app {

namespace {

/// So that the service's own limit of connections is the one that is met first.
void raiseFileLimit()
{
    constexpr rlim_t enough = 4096;
    rlimit files{};
    if (::getrlimit(RLIMIT_NOFILE, &files) != 0 || files.rlim_cur >= enough)
        return;
    files.rlim_cur = std::min(enough, files.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &files); // if it fails, connections beyond the limit wait
}

/// Passwords pass through the memory: nobody gets a picture of it.
void keepMemoryPrivate()
{
    constexpr rlimit none{.rlim_cur = 0, .rlim_max = 0};
    ::setrlimit(RLIMIT_CORE, &none);
#ifdef __linux__
    ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0); // which a program that takes core dumps would get all the same
#endif
}

store::Room roomOf(const ServeOptions &options)
{
    constexpr std::uintmax_t mebibyte = 1024UL * 1024;
    return {.keptFree = options.keptFree * mebibyte,
            .largest = options.largest * mebibyte,
            .withoutCopy = options.withoutCopy};
}

watch::Reply replyOf(const std::string &fault, const std::string &sentence)
{
    return fault.empty() ? watch::Reply{.body = sentence + "\n"}
                         : watch::Reply{.status = 503, .body = fault + "\n"};
}

watch::Reply replyTo(std::string_view target, const watch::Watched &watched)
{
    if (target == "/live")
        return replyOf(watched.condition.lifeFault(), "The service is alive.");
    if (target == "/ready")
        return replyOf(watched.condition.fault(), "The service is ready.");
    if (target == "/metrics")
        return {.body = metricsText(watched), .contentType = std::string(watch::Prometheus::contentType)};
    return {.status = 404, .body = "There are /live, /ready and /metrics.\n"};
}

/// A service with all that is around it.
class Serving
{
public:
    Serving(const ServeOptions &options, const InstallationOptions &installation, const CommandLine &line)
        : m_line(line), m_address(listenAddress(options.listen).value()), m_log(options.logFile),
          m_isNew(installation.isMissing()), m_database(installation.orNew(roomOf(options))),
          m_hash(installation.open(m_database)), m_service(m_database, m_hash),
          m_site(m_database, m_service, m_hash, /*clocks=*/{}, options.links),
          m_server(
              m_service, m_address.host, m_address.port, /*limits=*/{},
              [this](const http::RequestReport &report) { m_log.request(report); }, options.proxies())
    {
        takeOver(options);
        if (!options.watch.empty())
            watch(options);
        m_server.tell({.round = [this] { makeRound(); },
                       .drain = [this] { drain(); },
                       .hangUp = [this] { readSettings(); }});
        m_server.heedSignals();
    }

    void run()
    {
        if (m_isNew)
            logEvent("database made");
        logEvent("started");
        std::cout << "READY http://" << hostAndPort(m_address.host, m_server.port()) << "/tarvex/"
                  << std::endl;
        if (m_watchServer)
            std::cout << "WATCH " << hostAndPort(m_watchHost, m_watchServer->port()) << std::endl;
        m_manager.sayReady();
        m_server.run();
        logEvent("stopped");
    }

private:
    void watch(const ServeOptions &options)
    {
        const ListenAddress address = listenAddress(options.watch).value();
        m_watchHost = address.host;
        m_watchServer.emplace(address.host, address.port, options.isWatchedFromAnywhere,
                              [this](std::string_view target) { return replyTo(target, m_watched); });
    }
    void makeRound()
    {
        m_condition.madeRound();
        m_manager.sayAlive();
    }
    void drain()
    {
        m_condition.drains();
        m_manager.sayStopping();
    }
    /// What can be changed while it runs.
    void takeOver(const ServeOptions &options)
    {
        m_server.trust(options.proxies().trusted);
        m_server.show(options.hasPages(m_address.host) ? &m_site : nullptr);
        m_service.setSignUpRules(options.signUpRules);
        setLogLevel(options.logLevel);
    }
    void readSettings()
    {
        m_manager.sayReloading();
        m_log.reopen();
        try {
            takeOver(readAgain(m_line));
            logEvent("settings read again");
        } catch (const std::exception &error) {
            logFault("settings not read again", error.what());
        }
        m_manager.sayReady();
    }

    CommandLine m_line;
    ListenAddress m_address;
    Log m_log; // the last to end, for it may end the process
    bool m_isNew;
    store::Database m_database;
    security::KeyedHash m_hash;
    requests::Service m_service;
    pages::Site m_site;
    http::Server m_server;
    watch::Condition m_condition{m_database};
    watch::Watched m_watched{.database = m_database,
                             .service = m_service,
                             .server = m_server,
                             .condition = m_condition,
                             .lostLogLines = [this] { return m_log.lostLines(); },
                             .version = TARVEX_VERSION};
    std::string m_watchHost;
    std::optional<watch::WatchServer> m_watchServer;
    ServiceManager m_manager;
};

int serve(const ServeOptions &options, const InstallationOptions &installation, const CommandLine &line)
{
    keepMemoryPrivate();
    Serving serving(options, installation, line);
    std::signal(SIGPIPE, SIG_IGN); // a log that nobody reads any more is no reason to end
    std::signal(SIGXFSZ, SIG_IGN); // nor is a limit of file sizes: the write that meets it fails
    raiseFileLimit();
    serving.run();
    return 0;
}

} // namespace

Command addServe(CLI::App &program, const CommandLine &line)
{
    CLI::App *const command = program.add_subcommand("serve", "Answer clients until SIGTERM or SIGINT");
    const auto options = addServeOptions(*command);
    return {command, [options, installation = addInstallationOptions(*command), line] {
                return serve(*options, *installation, line);
            }};
}

} // namespace tarvex::app
