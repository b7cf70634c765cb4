// What was confirmed is there again after the service was killed in the middle of its work.

#include "Md5.h"
#include "RawClient.h"
#include "ServerProcess.h"
#include "TestDatabase.h"

#include <boost/regex.hpp>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <thread>
#include <vector>

using namespace tarvex;

namespace {

/// Saves one goal after the other, and knows which of them were confirmed.
struct Saver
{
    explicit Saver(int number) : login(std::to_string(number) + "@example.org") {}

    std::string request(const std::string &kind, const std::string &rest = "") const
    {
        return "p1=" + kind + "&p2=" + security::signInDigest(login) + "&p3=" + security::signInDigest("x") +
               rest;
    }
    void saveUntilItIsKilled(std::uint16_t port)
    {
        try {
            for (RawClient client(port);; ++last) {
                const std::string name = "n" + std::to_string(last);
                if (client.post(request("create-goal", "&p4=" + name + "&p5=1&p6=0&p7=1&p8=1")).body() ==
                    "OK")
                    confirmed.insert(name);
            }
        } catch (const boost::system::system_error &) {
            ++last; // whether that one was done nobody knows
        }
    }
    /// How many of the confirmed goals are missing, and how many goals there are twice.
    std::pair<std::size_t, std::size_t> lostAndDoubled(std::uint16_t port) const
    {
        static const boost::regex element("<name>([^<]*)</name>");
        const std::string answer = RawClient(port).post(request("get-goals", "&p4=1&p5=1")).body();
        std::set<std::string> lost = confirmed;
        std::set<std::string> seen;
        std::size_t doubled = 0;
        for (boost::sregex_iterator name(answer.begin(), answer.end(), element), end; name != end; ++name) {
            lost.erase((*name)[1]);
            doubled += seen.insert((*name)[1]).second ? 0U : 1U;
        }
        return {lost.size(), doubled};
    }

    std::string login;
    int last = 0;
    std::set<std::string> confirmed;
};

} // namespace

TEST(Durability, NothingThatWasConfirmedIsLostOrDoubledByAKill)
{
    const char *const asked = std::getenv("TARVEX_KILLS"); // for a longer run
    const int rounds = asked != nullptr ? std::atoi(asked) : 20;
    const TemporaryFolder folder;
    const std::string command =
        "serve --listen 127.0.0.1:0 --secret secret --database " + databaseUrl(folder);
    std::vector<Saver> savers = {Saver(1), Saver(2), Saver(3)};
    std::mt19937 random{std::random_device()()};
    std::size_t confirmed = 0;
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        ServerProcess server(folder, command);
        const std::uint16_t port = server.port();
        std::vector<std::thread> running;
        for (Saver &saver : savers) {
            RawClient(port).post("p1=create-new-user&p2=" + saver.login + "&p3=x&p4=N&type=json");
            EXPECT_EQ(saver.lostAndDoubled(port), std::pair(std::size_t(0), std::size_t(0)))
                << "round " << round;
            running.emplace_back([&saver, port] { saver.saveUntilItIsKilled(port); });
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 100));
        ::kill(server.child.id(), SIGKILL);
        for (std::thread &thread : running)
            thread.join();
        server.child.wait();
    }
    for (const Saver &saver : savers)
        confirmed += saver.confirmed.size();
    EXPECT_GT(confirmed, static_cast<std::size_t>(rounds));
    std::cout << rounds << " kills, " << confirmed << " confirmed goals\n";
}
