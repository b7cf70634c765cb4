#include "Commands.h"

#include "JsonLog.h"
#include "ListenAddress.h"
#include "SampleAccount.h"
#include "Server.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>

namespace tarvex::app {

namespace {

int serve(const std::string &listen, const std::string &databaseUrl)
{
    const auto address = listenAddress(listen);
    if (!address)
        throw http::CannotListen("The address to listen on must be given as HOST:PORT.");
    store::Database database(databaseUrl);
    requests::Service service(database);
    http::Server server(service, address->host, address->port, /*limits=*/{}, logRequest);
    server.drainOnSignals();
    std::signal(SIGPIPE, SIG_IGN); // a log that nobody reads any more is no reason to end
    startLog();
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
