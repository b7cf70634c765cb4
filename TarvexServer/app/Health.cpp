#include "Checks.h"
#include "Commands.h"
#include "ListenAddress.h"
#include "Output.h"

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace tarvex::app {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast::http;
using boost::beast::error_code;

constexpr std::chrono::seconds answerTime{5};
constexpr std::size_t largestAnswer = 4096;

struct HealthOptions
{
    std::string listen = "127.0.0.1:8717";
    std::string watch;
    bool isJson = false;
};

struct Verdict
{
    bool isHealthy = false;
    std::string sentence;
};

using Reply = beast::response<beast::string_body>;

/// What is answered to a GET. Throws boost::system::system_error.
Reply get(const ListenAddress &address, const std::string &target)
{
    asio::io_context io;
    const auto places = asio::ip::tcp::resolver(io).resolve(address.host, std::to_string(address.port));
    beast::request<beast::empty_body> request(beast::verb::get, target, /*version=*/11);
    request.set(beast::field::host, hostAndPort(address.host, address.port));
    request.keep_alive(false);
    boost::beast::tcp_stream stream(io);
    boost::beast::flat_buffer buffer(largestAnswer);
    beast::response_parser<beast::string_body> parser;
    parser.body_limit(largestAnswer);
    error_code result;
    const auto unless = [&result](const auto &next) {
        return [&result, next](error_code error, const auto &) {
            result = error;
            if (!error)
                next();
        };
    };
    stream.expires_after(answerTime);
    stream.async_connect(places, unless([&] {
                             beast::async_write(stream, request, unless([&] {
                                                    beast::async_read(stream, buffer, parser, unless([] {}));
                                                }));
                         }));
    io.run();
    if (result)
        throw boost::system::system_error(result);
    return parser.release();
}

/// A line of what somebody answered, fit for a terminal.
std::string lineOf(const std::string &text)
{
    constexpr std::size_t longest = 200;
    std::string line = text.substr(0, std::min(text.find('\n'), longest));
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return line;
}

/// Who watches is told a sentence; the clients' address refuses what is no POST, and so shows that it
/// answers.
Verdict ask(const HealthOptions &options)
{
    const bool isWatched = !options.watch.empty();
    const std::string &where = isWatched ? options.watch : options.listen;
    try {
        const Reply reply = get(listenAddress(where).value(), isWatched ? "/ready" : "/tarvex/");
        if (!isWatched && reply.result() == beast::status::method_not_allowed)
            return {.isHealthy = true, .sentence = "The service answers."};
        return {.isHealthy = isWatched && reply.result() == beast::status::ok,
                .sentence = lineOf(reply.body())};
    } catch (const boost::system::system_error &error) {
        return {.isHealthy = false,
                .sentence = "Nothing answers at " + where + ": " + error.code().message() + "."};
    }
}

int health(const HealthOptions &options)
{
    const Verdict verdict = ask(options);
    if (options.isJson)
        printJson({{"healthy", verdict.isHealthy}, {"sentence", verdict.sentence}});
    else if (verdict.isHealthy)
        std::cout << verdict.sentence << std::endl;
    else
        throw std::runtime_error(verdict.sentence);
    return verdict.isHealthy ? 0 : 1;
}

} // namespace

Command addHealth(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "health", "Ask a server that runs how it is; exits with 0 if it is well, else 1");
    const auto options = std::make_shared<HealthOptions>();
    command
        ->add_option("--watch", options->watch, "Where it answers those who watch; asks whether it is ready")
        ->check(readBy(listenAddress, "HOST:PORT"))
        ->type_name("HOST:PORT");
    command
        ->add_option("--listen", options->listen,
                     "Where it answers clients, without --watch; asks whether it answers at all")
        ->check(readBy(listenAddress, "HOST:PORT"))
        ->type_name("HOST:PORT")
        ->capture_default_str();
    command->add_flag("--json", options->isJson, "Print a JSON document for scripts");
    return {command, [options] { return health(*options); }};
}

} // namespace tarvex::app
