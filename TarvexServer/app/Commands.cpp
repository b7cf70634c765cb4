#include "Commands.h"

#include "Installation.h"
#include "JsonLog.h"
#include "ListenAddress.h"
#include "NewInvitations.h"
#include "SampleAccount.h"
#include "Server.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <csignal>
#include <ctime>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <sys/resource.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <vector>

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

/// What serve was told.
struct ServeOptions
{
    std::string listen = "127.0.0.1:8717";
    std::string database;
    std::string secret;
    std::vector<std::string> trustedProxies;
    http::Proxies proxies;
    requests::SignUpRules signUpRules;
    // MiB
    std::uintmax_t keptFree = 64;
    std::uintmax_t largest = 64UL * 1024;
};

/// What invite was told.
struct InviteOptions
{
    std::size_t count = 1;
    int days = 14;
};

void addGrowthOptions(CLI::App &command, ServeOptions &options)
{
    using Mode = requests::SignUpRules::Mode;
    const std::map<std::string, Mode> modes = {
        {"open", Mode::Open}, {"closed", Mode::Closed}, {"invitation", Mode::Invitation}};
    command.add_option("--sign-up", options.signUpRules.mode, "Who may make an account")
        ->transform(CLI::CheckedTransformer(modes).description("open|closed|invitation"))
        ->type_name("WHO")
        ->default_str("open");
    command.add_option("--most-accounts", options.signUpRules.mostAccounts, "How many accounts there may be")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    command
        .add_option("--keep-free", options.keptFree, "How much of its disk the database leaves free, in MiB")
        ->check(CLI::Range(0, 1 << 30))
        ->capture_default_str();
    command.add_option("--largest-database", options.largest, "How large the database may become, in MiB")
        ->check(CLI::Range(1, 1 << 30))
        ->capture_default_str();
}

void addInviteOptions(CLI::App &command, InviteOptions &options)
{
    command.add_option("--count", options.count, "How many accounts may be made")
        ->check(CLI::Range(1, 10'000))
        ->capture_default_str();
    command.add_option("--days", options.days, "For how long")
        ->check(CLI::Range(1, 3'650))
        ->capture_default_str();
}

void addServeOptions(CLI::App &command, ServeOptions &options)
{
    using Source = http::Proxies::Source;
    const std::map<std::string, Source> sources = {{"x-forwarded-for", Source::ForwardedFor},
                                                   {"proxy-protocol", Source::ProxyProtocol}};
    command.add_option("--listen", options.listen, "Where to listen, as HOST:PORT; port 0 takes a free one")
        ->capture_default_str();
    command
        .add_option("--trusted-proxy", options.trustedProxies,
                    "An address or network whose word is taken on where requests come from")
        ->type_name("ADDRESS[/BITS]");
    command.add_option("--proxy-says", options.proxies.source, "How such proxies tell")
        ->transform(CLI::CheckedTransformer(sources).description("x-forwarded-for|proxy-protocol"))
        ->type_name("HOW")
        ->default_str("x-forwarded-for");
    command
        .add_option("--proxy-hops", options.proxies.hops,
                    "Proxies between here and the clients, each of which adds to X-Forwarded-For")
        ->check(CLI::Range(1, 16))
        ->capture_default_str();
}

http::Proxies proxiesOf(const ServeOptions &options)
{
    http::Proxies proxies = options.proxies;
    for (const std::string &text : options.trustedProxies) {
        const auto network = http::readNetwork(text);
        if (!network)
            throw http::CannotListen("A trusted proxy must be given as an address or as ADDRESS/BITS.");
        proxies.trusted.push_back(*network);
    }
    return proxies;
}

security::KeyedHash openInstallation(store::Database &database, const ServeOptions &options)
{
    const std::string beside = database.file().string() + ".secret";
    return requests::openInstallation(database, options.secret.empty() ? beside : options.secret);
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

int serve(const ServeOptions &options)
{
    keepMemoryPrivate();
    const auto address = listenAddress(options.listen);
    if (!address)
        throw http::CannotListen("The address to listen on must be given as HOST:PORT.");
    http::Proxies proxies = proxiesOf(options);
    const Log log; // the last to end, for it may end the process
    constexpr std::uintmax_t mebibyte = 1024UL * 1024;
    store::Database database(
        options.database, {.keptFree = options.keptFree * mebibyte, .largest = options.largest * mebibyte});
    requests::Service service(database, openInstallation(database, options), /*clocks=*/{},
                              options.signUpRules);
    http::Server server(service, address->host, address->port, /*limits=*/{}, logRequest, std::move(proxies));
    server.drainOnSignals();
    std::signal(SIGPIPE, SIG_IGN); // a log that nobody reads any more is no reason to end
    std::signal(SIGXFSZ, SIG_IGN); // nor is a limit of file sizes: the write that meets it fails
    raiseFileLimit();
    logEvent("started");
    std::cout << "READY " << serviceUrl(address->host, server.port()) << std::endl;
    server.run();
    logEvent("stopped");
    return 0;
}

int sample(const ServeOptions &options)
{
    store::Database database(options.database);
    if (!requests::createSampleAccount(database, openInstallation(database, options)))
        std::cout << "The sample account is there already.\n";
    std::cout << "login: " << requests::sampleLogin << "\npassword: " << requests::samplePassword
              << std::endl;
    return 0;
}

int invite(const std::string &databaseUrl, const InviteOptions &options)
{
    constexpr std::int64_t day = 24LL * 60 * 60;
    store::Database database(databaseUrl);
    const std::int64_t expiresAt = std::time(nullptr) + options.days * day;
    for (const std::string &code : requests::createInvitations(database, options.count, expiresAt))
        std::cout << code << "\n";
    return 0;
}

} // namespace

int runCommand(int argc, const char *const *argv)
{
    CLI::App app("The service behind Tarvex Cloud, for hosting by yourself.", "tarvex-server");
    app.set_version_flag("--version", TARVEX_VERSION);
    app.require_subcommand(1);
    ServeOptions options;
    const auto addDatabase = [&](CLI::App *command) {
        command->add_option("--database", options.database, "The database, as sqlite:PATH")->required();
        command
            ->add_option("--secret", options.secret,
                         "The file of the secret that logins are kept under; made if it is not there")
            ->default_str("PATH.secret");
    };
    CLI::App *serveCommand = app.add_subcommand("serve", "Answer clients until SIGTERM or SIGINT");
    addServeOptions(*serveCommand, options);
    addGrowthOptions(*serveCommand, options);
    addDatabase(serveCommand);
    CLI::App *sampleCommand = app.add_subcommand("sample", "Make an account to try the client with");
    addDatabase(sampleCommand);
    InviteOptions inviteOptions;
    CLI::App *inviteCommand =
        app.add_subcommand("invite", "Print codes that serve --sign-up invitation asks for");
    addInviteOptions(*inviteCommand, inviteOptions);
    addDatabase(inviteCommand);
    CLI11_PARSE(app, argc, argv);
    try {
        if (inviteCommand->parsed())
            return invite(options.database, inviteOptions);
        return serveCommand->parsed() ? serve(options) : sample(options);
    } catch (const std::exception &error) {
        std::cerr << "tarvex-server: " << error.what() << std::endl;
        return 1;
    }
}

} // namespace tarvex::app
