#include "ServeOptions.h"

#include "Checks.h"
#include "InstallationOptions.h"
#include "ListenAddress.h"
#include "PeerAddress.h"
#include "Settings.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace tarvex::app {

namespace {

void addGrowthOptions(CLI::App &command, ServeOptions &options)
{
    using Mode = requests::SignUpRules::Mode;
    const std::map<std::string, Mode> modes = {
        {"open", Mode::Open}, {"closed", Mode::Closed}, {"invitation", Mode::Invitation}};
    command.add_option("--sign-up", options.signUpRules.mode, "Who may make an account")
        ->transform(oneOf(modes))
        ->type_name("open|closed|invitation")
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
    command.add_flag("--migrate-without-copy", options.withoutCopy,
                     "Keep no copy of a database of an older schema, for which there must be room otherwise");
}

void addNetworkOptions(CLI::App &command, ServeOptions &options)
{
    using Source = http::Proxies::Source;
    const std::map<std::string, Source> sources = {{"x-forwarded-for", Source::ForwardedFor},
                                                   {"proxy-protocol", Source::ProxyProtocol}};
    command.add_option("--listen", options.listen, "Where to listen; port 0 takes a free one")
        ->check(readBy(listenAddress, "HOST:PORT"))
        ->type_name("HOST:PORT")
        ->capture_default_str();
    command
        .add_option("--trusted-proxy", options.trustedProxies,
                    "An address or network whose word is taken on where requests come from; may be repeated")
        ->delimiter(',')
        ->check(readBy(http::readNetwork, "ADDRESS[/BITS]"))
        ->type_name("ADDRESS[/BITS]");
    command.add_option("--proxy-says", options.proxySource, "How such proxies tell")
        ->transform(oneOf(sources))
        ->type_name("x-forwarded-for|proxy-protocol")
        ->default_str("x-forwarded-for");
    command
        .add_option("--proxy-hops", options.proxyHops,
                    "Proxies between here and the clients, each of which adds to X-Forwarded-For")
        ->check(CLI::Range(1, 16))
        ->capture_default_str();
}

/// What the web site links to is the operator's: nothing but an address of the web can be meant.
CLI::Validator webAddress()
{
    return {[](const std::string &text) {
                const bool isWeb = text.starts_with("https://") || text.starts_with("http://");
                const bool isPlain =
                    std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7F'; });
                return isWeb && isPlain ? "" : "It must begin with https:// or http:// and hold no blanks.";
            },
            "URL"};
}

void addPagesOptions(CLI::App &command, ServeOptions &options)
{
    using Pages = ServeOptions::Pages;
    const std::map<std::string, Pages> all = {{"here", Pages::Here}, {"on", Pages::On}, {"off", Pages::Off}};
    command
        .add_option(
            "--pages", options.pages,
            "Whether browsers get pages: here means only while nobody but this machine can ask for them")
        ->transform(oneOf(all))
        ->type_name("here|on|off")
        ->default_str("here");
    command
        .add_option("--twitter", options.links.twitter,
                    "Where the client's link of that name leads from /twitter")
        ->check(webAddress());
    command
        .add_option("--facebook", options.links.facebook,
                    "Where the client's link of that name leads from /facebook")
        ->check(webAddress());
}

void addWatchOptions(CLI::App &command, ServeOptions &options)
{
    namespace level = spdlog::level;
    const std::map<std::string, level::level_enum> levels = {
        {"info", level::info}, {"warning", level::warn}, {"error", level::err}};
    command
        .add_option(
            "--watch", options.watch,
            "Where to answer GET /live, /ready and /metrics, on this machine; nowhere unless it is given")
        ->check(readBy(listenAddress, "HOST:PORT"))
        ->type_name("HOST:PORT");
    command.add_flag("--watch-from-anywhere", options.isWatchedFromAnywhere,
                     "Lets --watch be an address that other machines reach; nobody is asked who they are");
    command.add_option("--log-level", options.logLevel, "What the log tells of: everything, or the worse")
        ->transform(oneOf(levels))
        ->type_name("info|warning|error")
        ->default_str("info");
    command
        .add_option("--log-file", options.logFile,
                    "Where the log goes instead of standard error; opened anew on SIGHUP")
        ->type_name("PATH");
}

} // namespace

bool ServeOptions::hasPages(const std::string &host) const
{
    const auto address = http::readAddress(host);
    const bool isHere = host == "localhost" || (address && address->is_loopback());
    return pages == Pages::On || (pages == Pages::Here && isHere && trustedProxies.empty());
}

http::Proxies ServeOptions::proxies() const
{
    http::Proxies proxies{.trusted = {}, .source = proxySource, .hops = proxyHops};
    for (const std::string &text : trustedProxies)
        proxies.trusted.push_back(http::readNetwork(text).value());
    return proxies;
}

std::shared_ptr<const ServeOptions> addServeOptions(CLI::App &command)
{
    const auto options = std::make_shared<ServeOptions>();
    addNetworkOptions(command, *options);
    addGrowthOptions(command, *options);
    addPagesOptions(command, *options);
    addWatchOptions(command, *options);
    return options;
}

ServeOptions readAgain(const CommandLine &line)
{
    CLI::App program;
    addAllButServe(program); // of which the settings may hold some too
    CLI::App *const command = program.add_subcommand("serve");
    const auto options = addServeOptions(*command);
    const auto installation = addInstallationOptions(*command);
    try {
        program.parse(line.count, line.words);
    } catch (const CLI::ParseError &error) {
        throw std::runtime_error(Settings::faultOf(program, error));
    }
    return *options;
}

} // namespace tarvex::app
