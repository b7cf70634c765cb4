#include "Commands.h"

#include "JsonLog.h"
#include "ListenAddress.h"
#include "SampleAccount.h"
#include "Server.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <sys/resource.h>

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

int serve(const std::string &listen, const std::string &databaseUrl)
{
    const auto address = listenAddress(listen);
    if (!address)
        throw http::CannotListen("The address to listen on must be given as HOST:PORT.");
    const Log log; // the last to end, for it may end the process
    store::Database database(databaseUrl);
    requests::Service service(database);
    http::Server server(service, address->host, address->port, /*limits=*/{}, logRequest);
    server.drainOnSignals();
    std::signal(SIGPIPE, SIG_IGN); // a log that nobody reads any more is no reason to end
    raiseFileLimit();
    logEvent("started");
    std::cout << "READY " << serviceUrl(address->host, server.port()) << std::endl;
    server.run();
    logEvent("stopped");
    return 0;
}

int sample(const std::string &databaseUrl)
{
    store::Database database(databaseUrl);
    if (!requests::createSampleAccount(database))
        std::cout << "The sample account is there already.\n";
    std::cout << "login: " << requests::sampleLogin << "\npassword: " << requests::samplePassword
              << std::endl;
    return 0;
}

} // namespace

int runCommand(int argc, const char *const *argv)
{
    CLI::App app("The service behind Tarvex Cloud, for hosting by yourself.", "tarvex-server");
    app.set_version_flag("--version", TARVEX_VERSION);
    app.require_subcommand(1);
    std::string listen = "127.0.0.1:8717";
    std::string database;
    const auto addDatabase = [&](CLI::App *command) {
        command->add_option("--database", database, "The database, as sqlite:PATH")->required();
    };
    CLI::App *serveCommand = app.add_subcommand("serve", "Answer clients until SIGTERM or SIGINT");
    serveCommand->add_option("--listen", listen, "Where to listen, as HOST:PORT; port 0 takes a free one")
        ->capture_default_str();
    addDatabase(serveCommand);
    CLI::App *sampleCommand = app.add_subcommand("sample", "Make an account to try the client with");
    addDatabase(sampleCommand);
    CLI11_PARSE(app, argc, argv);
    try {
        return serveCommand->parsed() ? serve(listen, database) : sample(database);
    } catch (const std::exception &error) {
        std::cerr << "tarvex-server: " << error.what() << std::endl;
        return 1;
    }
}

} // namespace tarvex::app
