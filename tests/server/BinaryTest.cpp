#include "Customer.h"
#include "ListenAddress.h"
#include "Md5.h"
#include "RawClient.h"
#include "SampleRows.h"
#include "ServerProcess.h"
#include "SqliteConnection.h"

#include <atomic>
#include <boost/regex.hpp>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace tarvex;

TEST(Binary, ServesTheSampleAccountUntilItIsTold)
{
    const TemporaryFolder folder;
    const std::string database = R"( --database "sqlite:file:on the way/wheel.db")";
    for (const std::string before : {"", "The sample account is there already.\n"})
        EXPECT_EQ(run(folder, "sample" + database),
                  Said(0, before + "login: sample@example.org\npassword: wheel of life\n"));
    ServerProcess server(folder, "serve --listen 127.0.0.1:0" + database);
    const std::string line = server.line();
    const std::uint16_t port = ServerProcess::portOf(line);
    const std::string address = "127.0.0.1:" + std::to_string(port);
    EXPECT_EQ(line, "READY http://" + address + "/tarvex/");
    const std::string login = security::signInDigest("sample@example.org");
    const std::string password = security::signInDigest("wheel of life");
    RawClient client(port);
    EXPECT_EQ(client.post("p1=sign-in&p2=" + login + "&p3=" + password).body(), "OK");
    client.post("p1=create-new-user&p2=new@example.org&p3=topsecret&p4=Newcomer&type=json");
    client.post("p1=sign-in&p2=" + login + "&p3=" + login);

    for (int i = 0; i < 800; ++i)
        client.post("p1=x"); // more than a log that nobody reads can take at once

    ServerProcess second(folder, "serve --listen " + address + database);
    EXPECT_EQ(second.ended(), std::pair(1, "tarvex-server: The address " + address +
                                               " cannot be listened on: Address already in use.\n"));

    const auto [exitCode, log] = server.ended(SIGTERM);
    EXPECT_EQ(exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "file:on the way/wheel.db"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "file:on the way/wheel.db-wal"));
    EXPECT_NE(log.find(R"("kind":"create-new-user","outcome":"done")"), std::string::npos) << log;
    for (const std::string &secret : {login, password, std::string("example"), std::string("topsecret"),
                                      std::string("Newcomer"), std::string("127.0.0.1")})
        EXPECT_EQ(log.find(secret), std::string::npos) << secret;
}

TEST(Binary, PrintsInvitationsThatSigningUpMayNeed)
{
    const TemporaryFolder folder;
    ServerProcess invite(folder, "invite --count 2 --database sqlite:wheel.db");
    const std::vector<std::string> codes = {invite.line(), invite.line(), invite.line()};
    EXPECT_EQ(codes[2], "");
    EXPECT_EQ(invite.ended(), std::pair(0, std::string()));
    ServerProcess server(folder, serveHere + " --sign-up invitation");
    RawClient client(server.port());
    const auto signUp = [&client](const std::string &name) {
        return client.post("p1=create-new-user&p2=" + name.substr(0, 1) + "@example.org&p3=b&p4=" + name +
                           "&type=json");
    };
    for (const std::string &name : {"A " + codes[0], "B " + codes[1]})
        EXPECT_EQ(signUp(name).body(), R"({"result":"OK"})");
    EXPECT_NE(signUp("C").body(), R"({"result":"OK"})");
    EXPECT_EQ(server.ended(SIGTERM).first, 0);
}

TEST(Binary, StartsSeveralTimesAtOnceOnANewDatabase)
{
    const TemporaryFolder folder;
    std::vector<std::unique_ptr<ServerProcess>> servers(6);
    for (auto &server : servers)
        server = std::make_unique<ServerProcess>(folder, serveHere);
    for (const auto &server : servers) {
        const std::string line = server->line();
        ASSERT_TRUE(line.starts_with("READY ")) << server->ended().second;
        server->errors.close(); // a log that nobody reads
        RawClient client(ServerProcess::portOf(line));
        for (int i = 0; i < 20; ++i)
            client.post("p1=x");
        ::kill(server->child.id(), SIGTERM);
    }
    for (const auto &server : servers) {
        server->child.wait();
        EXPECT_EQ(server->child.native_exit_code(), 0);
    }
}

TEST(Binary, EndsAtASecondSignalOrSoonWithoutOne)
{
    const TemporaryFolder folder;
    for (const bool isSecond : {true, false}) {
        ServerProcess server(folder, serveHere);
        RawClient client(server.port());
        store::SqliteConnection other(folder.path() / "wheel.db");
        other.execute("BEGIN EXCLUSIVE");
        client.send(RawClient::request("p1=create-new-user&p2=a@example.org&p3=b&p4=C&type=json"));
        ::kill(server.child.id(), SIGTERM);
        while (isSecond && server.child.running()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10)); // the first must have been seen
            ::kill(server.child.id(), SIGTERM);
        }
        server.child.wait();
        EXPECT_EQ(server.child.native_exit_code(), isSecond ? SIGTERM : 0);
    }
}

TEST(Binary, SaysThatTheDiskIsFullAndServesOn)
{
    for (const auto &[limit, told] : {std::pair("", "database or disk is full"),
                                      std::pair("ulimit -f 2000", "disk I/O error")}) { // of file sizes
        const TemporaryFolder folder;
        const std::string disk = *limit == '\0' ? onDiskOf(folder, "1m") : behind(folder, limit);
        ServerProcess server(folder, serveHere + " --keep-free 0", disk);
        Customer customer(server.port());
        EXPECT_EQ(customer.saveLargeGoals(24).result_int(), 500U);
        EXPECT_EQ(customer.post("sign-in").body(), "OK");
        EXPECT_EQ(customer.post("create-sets", "&p4=Small").body(), "OK");
        const auto [exitCode, log] = server.ended(SIGTERM);
        EXPECT_EQ(exitCode, 0);
        EXPECT_NE(log.find(told), std::string::npos) << log;
    }
}

TEST(Binary, SavesNothingWhileTheFolderCannotBeWrittenTo)
{
    const TemporaryFolder folder;
    // Without the right to write wherever it likes, which the test may have.
    const std::string launcher = behind(folder, R"(exec setpriv --bounding-set=-dac_override "$@")");
    ServerProcess server(folder, serveHere, launcher);
    Customer customer(server.port());
    for (const auto &[rights, answer] : {std::pair(0500, "Error"), std::pair(0700, "OK")}) {
        std::filesystem::permissions(folder.path(), std::filesystem::perms(rights));
        EXPECT_EQ(customer.post("create-sets", "&p4=Name").body(), answer);
        EXPECT_EQ(customer.post("get-sets").result_int(), 200U);
    }
    EXPECT_NE(server.ended(SIGTERM).second.find("the folder of the database cannot be written to"),
              std::string::npos);
}

TEST(Binary, LeavesNoPasswordBehind)
{
    const TemporaryFolder folder;
    std::ofstream(folder.path() / "cores.sh") << "ulimit -c unlimited; exec \"$@\"";
    ServerProcess server(folder, serveHere, "/bin/sh cores.sh ");
    RawClient client(server.port());
    client.post("p1=create-new-user&p2=somebody@example.org&p3=Unlikely-4711-words&p4=Newcomer&type=json");
    for (const std::string form : {"/sign-in?login=somebody%40example.org&password=Unlikely-4711-words",
                                   "/sign-up?name=B&email=somebody.else%40example.org&password=Unlikely-4711-"
                                   "words&again=Unlikely-4711-words"}) {
        const std::string body = form.substr(form.find('?') + 1);
        client.send("POST " + form.substr(0, form.find('?')) +
                    " HTTP/1.1\r\nHost: x\r\nContent-Length: " + std::to_string(body.size()) +
                    "\r\nContent-Type: application/x-www-form-urlencoded\r\n\r\n" + body);
        EXPECT_EQ(client.read()["Location"], "/wheel");
    }
    client.post("p1=x");
    const std::string process = "/proc/" + std::to_string(server.child.id());
    std::ifstream maps(process + "/maps");
    std::ifstream memory(process + "/mem", std::ios::binary);
    if (!memory || !maps)
        GTEST_SKIP() << "nobody but root may look";
    std::size_t seen = 0;
    for (std::string line; std::getline(maps, line);) {
        boost::smatch range;
        if (!boost::regex_search(line, range, boost::regex("^([0-9a-f]+)-([0-9a-f]+) rw")))
            continue;
        const auto begin = std::stoull(range[1], nullptr, 16);
        std::string bytes(std::min(std::stoull(range[2], nullptr, 16) - begin, 1ULL << 30U), '\0');
        memory.clear();
        memory.seekg(static_cast<std::streamoff>(begin));
        memory.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        seen += static_cast<std::size_t>(memory.gcount());
        EXPECT_EQ(bytes.find("Unlikely-4711-words"), std::string::npos) << line;
        EXPECT_EQ(bytes.find("somebody@example.org"), std::string::npos) << line;
    }
    EXPECT_GT(seen, 100'000U);
    ::kill(server.child.id(), SIGQUIT);
    server.child.wait();
    EXPECT_FALSE(WCOREDUMP(server.child.native_exit_code()));
}

TEST(Binary, AddsNothingWhileThereIsTooLittleRoom)
{
    const TemporaryFolder folder;
    const std::string disk = onDiskOf(folder, "3m");
    for (const auto &[options, launcher, reason] : // each has room for one large save
         {std::tuple(" --keep-free 2", disk, "the disk has less free than is to be left so"),
          std::tuple(" --largest-database 1", std::string(), "the database is as large as it may be")}) {
        ServerProcess server(folder, serveHere + options, launcher);
        const std::uint16_t port = server.port();
        Customer customer(port);
        EXPECT_EQ(customer.saveLargeGoals(20).body(), "OK");
        EXPECT_EQ(customer.saveLargeGoals(20).body(), "Error");
        EXPECT_EQ(customer.post("set-area-names", "&p4=id:1;name:Body;{_end_}").body(), "Error");
        EXPECT_NE(RawClient(port).post("p1=create-new-user&p2=d@example.org&p3=b&p4=C&type=json").body(),
                  R"({"result":"OK"})");
        EXPECT_EQ(customer.post("set-area-value", "&p4=1&p5=7").body(), "OK");
        EXPECT_EQ(customer.post("delete-sets", "&p4=1").body(), "OK");
        EXPECT_NE(server.ended(SIGTERM).second.find(reason), std::string::npos);
    }
}

TEST(Binary, RefusesForWantOfMemoryAndGoesOn)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers ask for more memory than is left here";
#endif
    const TemporaryFolder folder;
    ServerProcess server(folder, serveHere, behind(folder, "ulimit -v 400000"));
    const std::uint16_t port = server.port();
    EXPECT_EQ(Customer(port).post("sign-in").body(), "OK");
    std::atomic<int> failures = 0;
    std::vector<std::jthread> customers(12);
    for (std::jthread &customer : customers)
        customer = std::jthread([&failures, port] {
            for (int i = 0; i < 6; ++i)
                try {
                    Customer one(port);
                    failures += one.saveLargeGoals(60).body() != "OK" ? 1 : 0;
                    failures += one.post("get-goals", "&p4=1&p5=3").body() == "Error" ? 1 : 0;
                } catch (const std::exception &) {
                    ++failures;
                }
        });
    customers.clear();
    EXPECT_GT(failures, 0);
    EXPECT_EQ(Customer(port).post("sign-in").body(), "OK");
    EXPECT_EQ(server.ended(SIGTERM).first, 0);
}

TEST(Binary, ListensToThisMachineAloneUnlessToldOtherwise)
{
    EXPECT_NE(run(TemporaryFolder(), "serve --help").second.find("=127.0.0.1:8717\n"), std::string::npos);
    EXPECT_EQ(app::hostAndPort("::1", 80), "[::1]:80");
}

TEST(Binary, ShowsPagesToThisMachineAloneUnlessToldOtherwise)
{
    for (const SampleRow &row : sampleRows("shown-pages.txt")) {
        const TemporaryFolder folder;
        ServerProcess server(folder, "serve --listen " + row[0] + here);
        EXPECT_EQ(std::to_string(RawClient(server.port()).get("/").result_int()), row[1]) << row[0];
        server.ended(SIGTERM);
    }
}

TEST(Binary, SaysInOneLineWhyItCannotStart)
{
    const TemporaryFolder folder;
    for (const SampleRow &row : sampleRows("refused-starts.txt"))
        EXPECT_EQ(ServerProcess(folder, row[0]).ended(), std::pair(1, "tarvex-server: " + row[1] + "\n"));
}

TEST(Binary, NeedsTheLibraryOfPostgresqlForNothingElse)
{
    const TemporaryFolder folder;
    const std::string unfit = "/usr/bin/env LD_LIBRARY_PATH=. ";
    std::ofstream(folder.path() / "libpq.so.5").flush(); // is no library
    const Said said = run(folder, "serve --database postgresql://127.0.0.1:1/wheel", unfit);
    EXPECT_EQ(said.first, 1);
    EXPECT_TRUE(
        said.second.starts_with("tarvex-server: PostgreSQL asks for its client library, on Debian libpq5: "));
    ServerProcess onSqlite(folder, serveHere, unfit);
    EXPECT_GT(onSqlite.port(), 0);
    EXPECT_EQ(onSqlite.ended(SIGTERM).first, 0);
}
