// Who gets how much of the service: connections, turns, and whom a proxy speaks for.

#include "FairThreads.h"
#include "HttpFixture.h"
#include "PeerAddress.h"
#include "ProxyHeader.h"
#include "SampleRows.h"

#include <future>
#include <map>
#include <semaphore>

using namespace tarvex;
using http::ConnectionCounts;
using http::Limits;

TEST_F(Http, ClosesTheConnectionThatWasIdleLongestForANewOne)
{
    start({.connections = 2, .refusedConnections = 0});
    RawClient first(port());
    EXPECT_EQ(first.post(asAnna("sign-in")).body(), "OK");
    RawClient second(port());
    EXPECT_EQ(second.post(asAnna("sign-in")).body(), "OK");
    EXPECT_EQ(first.post(asAnna("sign-in")).body(), "OK");
    EXPECT_EQ(RawClient(port()).post(asAnna("sign-in")).body(), "OK");
    EXPECT_TRUE(second.isClosedSilently());
    EXPECT_EQ(first.post(asAnna("sign-in")).body(), "OK");
}

TEST_F(Http, LimitsWhomAProxyNamesAndNotTheProxy)
{
    const auto answerFor = [&](const std::string &body, const std::string &address) {
        const std::string fields = "X-Forwarded-For: 192.0.2.1\r\nX-Forwarded-For: " + address + "\r\n";
        return RawClient(port()).post(body, fields).body();
    };
    start(/*limits=*/{}, {.trusted = {*http::readNetwork("127.0.0.0/8")}});
    const std::string tooMany = "Too many failed attempts. Please wait a minute and try again.";
    for (int i = 0; i < 10;
         ++i) // each by another login, so that only the address is what they have in common
        answerFor("p1=sign-in" + credentials(std::to_string(i), "wrong"), "192.0.2.7, 203.0.113.1:99");
    EXPECT_EQ(answerFor(asAnna("sign-in"), "203.0.113.1"), tooMany);
    EXPECT_EQ(answerFor(asAnna("sign-in"), "203.0.113.2"), "OK");
    for (int i = 10; i < 20; ++i)
        answerFor("p1=sign-in" + credentials(std::to_string(i), "wrong"), "nonsense");
    EXPECT_EQ(answerFor("p1=sign-in" + credentials("20", "wrong"), ""), tooMany); // the proxy's own
}

TEST_F(Http, TakesAProxysWordAtTheBeginningOfAConnection)
{
    start({.connections = 3, .connectionsPerPeer = 1, .refusedConnections = 0},
          {.trusted = {*http::readNetwork("127.0.0.1")}, .source = http::Proxies::Source::ProxyProtocol});
    const auto greeting = [](const std::string &address) {
        return "PROXY TCP4 " + address + " 192.0.2.9 4711 8717\r\n";
    };
    RawClient first(port());
    first.send(greeting("203.0.113.1"));
    EXPECT_EQ(first.post(asAnna("sign-in")).body(), "OK");
    RawClient second(port());
    second.send(greeting("203.0.113.1") + RawClient::request(asAnna("sign-in")));
    EXPECT_TRUE(second.isClosedSilently());
    RawClient unknown(port());
    unknown.send("PROXY UNKNOWN\r\n" + RawClient::request(asAnna("sign-in")));
    EXPECT_EQ(unknown.read().body(), "OK");
    RawClient another(port()); // which counts as the proxy's, too
    another.send("PROXY UNKNOWN\r\n" + RawClient::request(asAnna("sign-in")));
    EXPECT_TRUE(another.isClosedSilently());
    RawClient unannounced(port());
    unannounced.send(RawClient::request(asAnna("sign-in")));
    EXPECT_TRUE(unannounced.isClosedSilently());
    RawClient silent(port()); // so far
    RawClient last(port());
    last.send(greeting("203.0.113.3") + RawClient::request(asAnna("sign-in")));
    EXPECT_EQ(last.read().body(), "OK");
    EXPECT_TRUE(first.isClosedSilently()); // which was idle for longest
    silent.send(greeting("203.0.113.4") + RawClient::request(asAnna("sign-in")));
    EXPECT_EQ(silent.read().body(), "OK");
    EXPECT_EQ(m_service.measures().closedConnections.count(), 2U);
}

TEST(ProxyHeader, IsReadInBothItsVersions)
{
    using State = http::ProxyHeader::State;
    for (const SampleRow &row : sampleRows("proxy-headers.txt")) {
        const auto header = http::readProxyHeader(row[0]);
        const std::string state = header.state == State::Incomplete  ? "incomplete"
                                  : header.state == State::Malformed ? "malformed"
                                                                     : std::to_string(header.size);
        EXPECT_EQ(state, row[1]) << row[0];
        EXPECT_EQ(header.source ? header.source->to_string() : "", row[2]) << row[0];
    }
}

TEST(Network, IsAnAddressWithTheNumberOfItsBits)
{
    for (const SampleRow &row : sampleRows("networks.txt")) {
        const auto network = http::readNetwork(row[0]);
        const auto address = boost::asio::ip::make_address(row[1]);
        const std::string found = !network                                              ? "none"
                                  : http::Proxies{{*network}, {}, 1}.isTrusted(address) ? "in it"
                                                                                        : "not in it";
        EXPECT_EQ(found, row[2]) << row[0] << " " << row[1];
    }
}

TEST(FairThreads, ServeInTurnAndDropTheLastOfWhoeverHasMost)
{
    std::string done;
    std::counting_semaphore<> hold(0);
    std::counting_semaphore<> ended(0);
    std::counting_semaphore<> begun(0);
    http::FairThreads threads(/*threads=*/1, /*room=*/4);
    const auto submit = [&](const std::string &whose, char name) {
        threads.submit(whose, {.run =
                                   [&, name] {
                                       begun.release();
                                       hold.acquire();
                                       done += name;
                                       ended.release();
                                   },
                               .drop = [&, name] { done.append("-").append(1, name); }});
    };
    submit("m", '1');
    begun.acquire();
    for (const char name : {'2', '3', '4', '5'})
        submit("m", name);
    submit("a", 'a');
    EXPECT_EQ(done, "-5");
    submit("m", '6');
    EXPECT_EQ(done, "-5-6");
    submit("z", 'z');
    EXPECT_EQ(done, "-5-6-4");
    submit("b", 'b');
    submit("c", 'c');
    EXPECT_EQ(done, "-5-6-4-3-c"); // everybody has one: there is no room for more
    hold.release(5);
    for (int i = 0; i < 5; ++i)
        ended.acquire();
    EXPECT_EQ(done.substr(10), "1zab2");
}

TEST(ConnectionCounts, LimitConnectionsPerPeerAndAltogether)
{
    using Welcome = ConnectionCounts::Welcome;
    const Limits limits = {.connections = 3, .connectionsPerPeer = 1, .refusedConnections = 1};
    ConnectionCounts counts(limits);
    EXPECT_EQ(counts.enter("a"), Welcome::Served);
    EXPECT_EQ(counts.enter("a"), Welcome::Refused);
    EXPECT_EQ(counts.enter("a"), Welcome::Closed);
    counts.leave("a", Welcome::Refused);
    EXPECT_EQ(counts.enter(""), Welcome::Served); // the machine itself has no limit of its own
    EXPECT_EQ(counts.enter(""), Welcome::Served);
    EXPECT_EQ(counts.enter("b"), Welcome::Refused);
    counts.leave("a", Welcome::Served);
    EXPECT_EQ(counts.enter("a"), Welcome::Served);
}

TEST(AccountQueues, StartOneTaskOfAnAccountAtATime)
{
    http::AccountQueues queues;
    std::string started;
    std::map<char, http::AccountQueues::Place> places;
    for (const char task : {'a', 'f', 'b', 'c'})
        queues.enter(/*accountId=*/1, [&, task](http::AccountQueues::Place place) {
            started += task;
            if (task == 'f')
                throw std::bad_alloc();
            places[task] = std::move(place);
        });
    queues.enter(/*accountId=*/2, [&](http::AccountQueues::Place place) { places['x'] = std::move(place); });
    EXPECT_EQ(started, "a");
    places.erase('a');
    EXPECT_EQ(started, "afb"); // the one that fails holds up nobody
    auto ended = std::async(std::launch::async, [&] { queues.end(); });
    places.erase('x');
    for (bool isIn = true; isIn;) { // until it lets nothing more in
        isIn = false;
        queues.enter(/*accountId=*/3, [&isIn](const auto &) { isIn = true; });
    }
    places.erase('b');
    ended.get();
    EXPECT_EQ(started, "afb");
}

TEST(PeerName, IsWhatOneSubscriberHas)
{
    for (const SampleRow &row : sampleRows("peer-names.txt"))
        EXPECT_EQ(http::peerName(boost::asio::ip::make_address(row[0]), /*isMachineLimited=*/false), row[1])
            << row[0];
}
