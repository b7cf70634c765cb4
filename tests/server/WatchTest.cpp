// What is seen from outside of a server that runs.

#include "Customer.h"
#include "SampleRows.h"
#include "ServerProcess.h"
#include "SqliteConnection.h"

#include <boost/asio/local/datagram_protocol.hpp>
#include <boost/regex.hpp>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <thread>

using namespace tarvex;

namespace {

constexpr std::chrono::milliseconds logTime{400}; // after which a line has been written

/// Status and sentence.
using Told = std::pair<unsigned, std::string>;

/// A server with a place for those who watch it.
struct Watched
{
    explicit Watched(const std::string &options = "", const std::string &wrapper = "")
        : process(folder, serveHere + " --watch 127.0.0.1:0" + options, wrapper), port(process.port()),
          watchPort(ServerProcess::portOf(process.line()))
    {
    }

    RawClient::Response get(const std::string &target) const { return RawClient(watchPort).get(target); }
    Told told(const std::string &target) const
    {
        const auto response = get(target);
        return {response.result_int(), response.body()};
    }
    /// Each sample, by its name with its labels.
    std::map<std::string, double> metrics() const
    {
        std::map<std::string, double> samples;
        std::istringstream lines(get("/metrics").body());
        for (std::string line; std::getline(lines, line);) {
            if (!line.starts_with('#'))
                samples[line.substr(0, line.rfind(' '))] = std::stod(line.substr(line.rfind(' ')));
        }
        return samples;
    }
    Said health(const std::string &options) const { return run(folder, "health " + options); }
    std::filesystem::path file(const std::string &name) const { return folder.path() / name; }
    void signal(int number) { ::kill(process.child.id(), number); }

    TemporaryFolder folder;
    ServerProcess process;
    std::uint16_t port;
    std::uint16_t watchPort;
};

std::string signUp(const std::string &email)
{
    return "p1=create-new-user&p2=" + email + "&p3=b&p4=C&type=json";
}

/// The socket that a service manager listens to.
class Manager
{
public:
    explicit Manager(const std::string &name)
    {
        m_socket.open();
        m_socket.bind(name);
        ::setenv("NOTIFY_SOCKET", name.c_str(), /*replace=*/1);
        ::setenv("WATCHDOG_USEC", "1000000", /*replace=*/1);
        const timeval patience{.tv_sec = 5, .tv_usec = 0};
        ::setsockopt(m_socket.native_handle(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    }
    ~Manager()
    {
        ::unsetenv("NOTIFY_SOCKET");
        ::unsetenv("WATCHDOG_USEC");
    }
    /// The first line of what is said next.
    std::string said()
    {
        std::array<char, 256> words{};
        const ssize_t size = ::recv(m_socket.native_handle(), words.data(), words.size(), 0);
        const std::string text(words.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        return text.substr(0, text.find('\n'));
    }
    /// The same, unless it is only that all is well.
    std::string news()
    {
        for (std::string words = said();; words = said()) {
            if (words != "WATCHDOG=1")
                return words;
        }
    }

private:
    boost::asio::io_context m_io;
    boost::asio::local::datagram_protocol::socket m_socket{m_io};
};

} // namespace

TEST(Watch, IsReadyUntilItDrains)
{
    Watched server;
    EXPECT_EQ(server.told("/live"), Told(200, "The service is alive.\n"));
    EXPECT_EQ(server.told("/ready"), Told(200, "The service is ready.\n"));
    EXPECT_EQ(server.get("/other").result_int(), 404U);
    const std::string where = "127.0.0.1:" + std::to_string(server.port);
    const std::string watch = "--watch 127.0.0.1:" + std::to_string(server.watchPort);
    EXPECT_EQ(server.health(watch), Said(0, "The service is ready.\n"));
    EXPECT_EQ(server.health("--json --listen " + where),
              Said(0, "{\"healthy\":true,\"sentence\":\"The service answers.\"}\n"));

    std::optional<RawClient> slow(server.port);
    slow->send(RawClient::request("p1=x").substr(0, 40));
    std::this_thread::sleep_for(logTime); // a part has arrived
    server.signal(SIGTERM);
    const std::string sentence = "The service is about to end and takes no more connections.\n";
    while (server.told("/ready").first == 200) {
    }
    EXPECT_EQ(server.told("/ready"), Told(503, sentence));
    EXPECT_EQ(server.told("/live").first, 200U);
    EXPECT_EQ(server.health(watch), Said(1, "tarvex-server: " + sentence));
    slow->send(RawClient::request("p1=x").substr(40));
    EXPECT_EQ(slow->read().body(), "Error");
    slow.reset();
    EXPECT_EQ(server.process.ended().first, 0);
    EXPECT_EQ(server.health("--listen " + where),
              Said(1, "tarvex-server: Nothing answers at " + where + ": Connection refused.\n"));
}

TEST(Watch, IsNotReadyWhileTheDatabaseTakesNothing)
{
    const Watched server;
    const auto log = server.file("wheel.db-wal");
    const auto written = std::filesystem::file_size(log);
    std::filesystem::rename(log, server.file("moved"));
    EXPECT_EQ(
        server.told("/ready"),
        Told(503, "The database cannot be written to: a file of the database was deleted or replaced.\n"));
    EXPECT_EQ(server.metrics().at("tarvex_ready"), 0);
    EXPECT_FALSE(server.metrics().contains("tarvex_accounts"));
    std::filesystem::rename(server.file("moved"), log);
    EXPECT_EQ(server.told("/ready").first, 503U); // it knows what was so lately
    std::this_thread::sleep_for(std::chrono::seconds(3));
    EXPECT_EQ(server.told("/ready").first, 200U);
    EXPECT_GT(std::filesystem::file_size(log), written); // a look is a real write

    const Watched hindered;
    store::SqliteConnection other(hindered.file("wheel.db"));
    other.execute("BEGIN IMMEDIATE");
    EXPECT_EQ(hindered.told("/ready"),
              Told(503, "The database takes longer than two seconds for a small write.\n"));
    EXPECT_EQ(hindered.told("/live").first, 200U);

    const Watched full(" --keep-free 1000000000");
    EXPECT_EQ(full.told("/ready"),
              Told(503, "Nothing can be added: the disk has less free than is to be left so.\n"));
}

TEST(Watch, CountsWhatHappened)
{
    const Watched server(" --most-accounts 1");
    RawClient client(server.port);
    const std::string goal = "name:a;priority:5;checked:0;setsId:1;areaId:3;{_end_}";
    const std::string tooMany = "&p4=" + boost::algorithm::join(std::vector(20'001, goal), "");
    for (const std::string &body :
         {signUp("a@example.org"), signUp("b@example.org"), Customer::request("get-sets"),
          Customer::request("get-sets"), Customer::request("get-sets"),
          Customer::request("get-sets", "", /*password=*/"wrong"),
          Customer::request("create-some-goals", "&p4=" + goal),
          Customer::request("create-some-goals", tooMany), Customer::request("delete-some-goals", "&p4=1;"),
          std::string("p1=<script>")})
        client.post(body);
    for (const char *path : {"/", "/tarvex/"}) // the latter ends the connection
        client.get(path);
    RawClient form(server.port);
    form.send("POST /sign-in HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: 600000\r\n\r\n");
    EXPECT_EQ(form.read().result_int(), 413U);
    const auto metrics = server.metrics();
    for (const SampleRow &row : sampleRows("counted.txt"))
        EXPECT_EQ(metrics.at(row[0]), std::stod(row[1])) << row[0];
    EXPECT_GT(metrics.at("tarvex_request_duration_seconds_sum{kind=\"create-new-user\"}"), 0);
    EXPECT_EQ(server.get("/metrics").body().find("script"), std::string::npos);
}

TEST(Watch, WatchersHoldUpNobody)
{
    const Watched server;
    std::vector<std::unique_ptr<RawClient>> idle(8);
    for (auto &client : idle)
        client = std::make_unique<RawClient>(server.watchPort);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(RawClient(server.watchPort).isClosedSilently());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2)); // at once
    EXPECT_EQ(RawClient(server.port).post("p1=x").body(), "Error");
    for (const auto &client : idle)
        EXPECT_TRUE(client->isClosedSilently()); // soon
    EXPECT_EQ(server.told("/live").first, 200U);
}

TEST(Watch, AHangUpReopensTheLogAndReadsTheSettingsAgain)
{
    const TemporaryFolder folder;
    const std::string settings = (folder.path() / "settings").string();
    const std::string always = "trusted-proxy = 127.0.0.1\nlog-file = log\n";
    std::ofstream(settings) << "sign-up = closed\npages = on\n" << always;
    Watched server(" --config " + settings);
    RawClient client(server.port);
    const auto from = [&client](const std::string &address, const std::string &body) {
        return client.post(body, "X-Forwarded-For: " + address + "\r\n").body();
    };
    const auto hangUp = [&server, &settings](const std::string &text, const std::string &told) {
        std::ofstream(settings) << text;
        server.signal(SIGHUP);
        std::this_thread::sleep_for(logTime);
        const std::string log = contentOf(server.file("log"));
        EXPECT_NE(log.find(told), std::string::npos) << log;
    };
    EXPECT_NE(from("192.0.2.1", signUp("a@example.org")), R"({"result":"OK"})");
    from("192.0.2.1", "p1=x");
    from("192.0.2.7", "p1=x");
    std::this_thread::sleep_for(logTime);
    const std::string first = contentOf(server.file("log"));
    EXPECT_EQ(first.find("192.0.2."), std::string::npos);
    const auto ids = matches(first, R"re("id":"([0-9a-f]{8}-\d+)","peer")re");
    EXPECT_EQ(std::set(ids.begin(), ids.end()).size(), 3U);
    const auto peers = matches(first, R"re("peer":"([0-9a-f]{8})")re");
    ASSERT_EQ(peers.size(), 3U);
    EXPECT_EQ(peers[0], peers[1]);
    EXPECT_NE(peers[0], peers[2]);
    EXPECT_EQ(client.get("/").result_int(), 200);

    std::filesystem::rename(server.file("log"), server.file("log.1"));
    std::ofstream(settings) << "log-level = error\n" << always;
    server.signal(SIGHUP);
    std::this_thread::sleep_for(logTime);
    EXPECT_EQ(from("192.0.2.1", signUp("a@example.org")), R"({"result":"OK"})");
    EXPECT_EQ(client.get("/").result_int(), 404); // others ask through the proxy
    hangUp("sign-up = nobody", "settings not read again");
    const std::string quiet = contentOf(server.file("log"));
    EXPECT_EQ(std::count(quiet.begin(), quiet.end(), '\n'), 1); // and nothing of what went well
    EXPECT_TRUE(contentOf(server.file("log.1")).starts_with(first));
    server.signal(SIGTERM);
    EXPECT_EQ(server.process.ended(), std::pair(0, std::string()));
}

TEST(Watch, TellsOfLostLinesOnceThereIsRoomAgain)
{
    const TemporaryFolder folder;
    const auto log = folder.path() / "log";
    std::filesystem::create_symlink("/dev/full", log);
    Watched server(" --log-file " + log.string());
    RawClient(server.port).post("p1=x");
    std::this_thread::sleep_for(logTime);
    EXPECT_EQ(server.metrics().at("tarvex_log_lines_lost_total"),
              3); // of the database, the start, the request
    std::filesystem::remove(log);
    for (int i = 0; i < 2; ++i) { // to have it opened, and to have a line written there
        server.signal(SIGHUP);
        std::this_thread::sleep_for(logTime);
    }
    EXPECT_NE(contentOf(log).find(R"("event":"log lines lost","lines":4})"), std::string::npos)
        << contentOf(log);
    EXPECT_EQ(server.metrics().at("tarvex_log_lines_lost_total"), 4);
}

TEST(Watch, TellsTheServiceManagerHowItIs)
{
    const TemporaryFolder folder;
    for (const std::string wrapper : {"", "/usr/bin/nohup "}) {
        Manager manager((folder.path() / ("socket" + std::to_string(wrapper.size()))).string());
        Watched server("", wrapper);
        EXPECT_EQ(manager.said(), "READY=1");
        EXPECT_EQ(manager.said(), "WATCHDOG=1");
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(manager.said(), "WATCHDOG=1");
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(900));
        server.signal(SIGHUP);
        if (wrapper.empty()) {
            EXPECT_EQ(manager.news(), "RELOADING=1");
            EXPECT_EQ(manager.news(), "READY=1");
        }
        server.signal(SIGTERM);
        EXPECT_EQ(manager.news(), "STOPPING=1");
        EXPECT_EQ(server.process.ended().first, 0);
    }
}

TEST(Watch, WhatIsWatchedForIsExported)
{
    const Watched server;
    const std::string metrics = server.get("/metrics").body();
    for (const std::string file : {"alerts.yml", "dashboard.json"}) {
        const std::string text = contentOf(TARVEX_MONITORING "/" + file);
        const auto names = matches(text, "((?:tarvex|process)_[a-z_]+[a-z])");
        EXPECT_GT(names.size(), 5U) << file;
        for (const std::string &each : names)
            EXPECT_TRUE(boost::regex_search(metrics, boost::regex("^" + each + "[ {]"))) << each;
    }
}
