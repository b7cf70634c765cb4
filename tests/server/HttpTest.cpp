#include "FairThreads.h"
#include "HttpFixture.h"
#include "PeerAddress.h"
#include "ProxyHeader.h"
#include "RawClient.h"
#include "SampleRows.h"

#include <future>
#include <map>
#include <semaphore>

using namespace tarvex;
using http::ConnectionCounts;
using http::Limits;

TEST_F(Http, AnswersOneRequestAfterTheOtherOnAConnection)
{
    start();
    RawClient client(port());
    const auto answer = client.post(asAnna("sign-in"));
    EXPECT_EQ(answer.body(), "OK");
    EXPECT_EQ(answer["Content-Type"], "text/plain; charset=us-ascii");
    client.send(RawClient::request(asAnna("get-sets")) + RawClient::request(asAnna("sign-in")));
    const auto sets = client.read();
    EXPECT_EQ(column(sets.body(), "id"), "[1]");
    EXPECT_EQ(sets["Content-Type"], "text/xml; charset=utf-8");
    EXPECT_EQ(sets["Cache-Control"], "no-store");
    EXPECT_EQ(client.read().body(), "OK");
}

TEST_F(Http, NeverAppliesARequestThatWasCutShort)
{
    start();
    const std::string whole = RawClient::request(asAnna("create-sets", "&p4=Name"));
    for (const std::size_t missing : {1U, 4U, 60U, 120U}) {
        RawClient client(port());
        client.send(whole.substr(0, whole.size() - missing));
        client.endSending();
        EXPECT_TRUE(client.isClosedSilently()) << missing;
    }
    EXPECT_EQ(column(RawClient(port()).post(asAnna("get-sets")).body(), "id"), "[1]");
    RawClient saver(port());
    saver.post(asAnna("create-some-goals", "&p4=" + goal("kept")));
    const std::string save = RawClient::request(asAnna("create-some-goals", "&p4=" + goal("new")));
    for (const std::size_t missing : {1U, 8U, 57U}) {
        RawClient client(port());
        client.send(save.substr(0, save.size() - missing));
        client.endSending();
        EXPECT_TRUE(client.isClosedSilently());
        EXPECT_EQ(saver.post(asAnna("delete-some-goals", "&p4=1;")).body(), "Error") << missing;
    }
}

TEST_F(Http, RefusesALargeBodyInTheWordsOfItsKindAndGoesOn)
{
    Limits limits;
    limits.body = 1000;
    limits.discardedBody = 100'000;
    start(limits);
    RawClient client(port());
    client.post(asAnna("create-some-goals", "&p4=" + goal("kept")));
    const auto refused = client.post(asAnna("create-some-goals", "&p4=" + goal(std::string(50'000, 'x'))));
    EXPECT_EQ(refused.result_int(), 413U);
    EXPECT_EQ(refused.body(), "Error");
    EXPECT_EQ(client.post(asAnna("delete-some-goals", "&p4=1;")).body(), "Error");
    EXPECT_EQ(client.post(asAnna("set-checked-area-percent", "&p5=1&" + std::string(1000, 'x'))).body(), "");
    const auto endless = client.post(asAnna("set-checked-area-percent", "&p5=" + std::string(100'000, '1')));
    EXPECT_EQ(endless.result_int(), 413U);
    EXPECT_EQ(endless.body(), "");
    EXPECT_FALSE(endless.keep_alive());
}

TEST_F(Http, AnswersWhatIsNotTheProtocolWithAPlainStatus)
{
    start();
    for (const SampleRow &row : sampleRows("refused-heads.txt")) {
        RawClient client(port());
        client.send(row[0]);
        const auto response = client.read();
        EXPECT_EQ(std::to_string(response.result_int()), row[1]) << row[0].substr(0, 80);
        EXPECT_EQ(response["Allow"], row[1] == "405" ? "POST" : "");
        EXPECT_FALSE(response.keep_alive());
        client.endSending();
        EXPECT_TRUE(client.isClosedSilently());
    }
}

TEST_F(Http, TellsAClientThatAsksToGoOn)
{
    start();
    RawClient client(port());
    const std::string body = asAnna("sign-in");
    client.send("POST http://x/tarvex/ HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: " +
                std::to_string(body.size()) + "\r\n\r\n");
    EXPECT_EQ(client.read().result_int(), 100U);
    client.send(body);
    EXPECT_EQ(client.read().body(), "OK");
    client.send(
        "POST /tarvex/ HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: 5000000\r\n\r\n");
    EXPECT_EQ(client.read().result_int(), 413U);
}

TEST_F(Http, ClosesConnectionsThatKeepItWaiting)
{
    Limits limits;
    limits.headTime = limits.bodyTime = std::chrono::milliseconds(50);
    limits.idleTime = std::chrono::hours(1);
    start(limits);
    for (const char *beginning :
         {"", "POST /tarv", "POST /tarvex/ HTTP/1.1\r\nHost: x\r\nContent-Length: 9\r\n\r\np1="}) {
        RawClient client(port());
        client.send(beginning);
        EXPECT_TRUE(client.isClosedSilently()) << beginning;
    }
    stop();
    std::swap(limits.headTime, limits.idleTime);
    start(limits);
    RawClient idle(port());
    EXPECT_EQ(idle.post(asAnna("sign-in")).body(), "OK");
    EXPECT_TRUE(idle.isClosedSilently());
}

TEST_F(Http, SaysThatItIsBusyWhenThereAreTooManyConnections)
{
    Limits limits;
    limits.connections = 1;
    limits.refusedConnections = 1;
    start(limits);
    RawClient served(port());
    const std::string request = RawClient::request(asAnna("sign-in"));
    served.send(request + request.substr(0, request.size() - 1));
    EXPECT_EQ(served.read().body(), "OK");
    {
        RawClient refused(port());
        const auto answer = refused.post(asAnna("set-checked-area-percent", "&p5=1"));
        EXPECT_EQ(answer.result_int(), 503U);
        EXPECT_EQ(answer.body(), "");
        RawClient closed(port());
        EXPECT_TRUE(closed.isClosedSilently());
    }
    served.send(request.substr(request.size() - 1));
    EXPECT_EQ(served.read().body(), "OK");
}

TEST_F(Http, ClosesTheConnectionThatWasIdleLongestForANewOne)
{
    Limits limits;
    limits.connections = 2;
    limits.refusedConnections = 0;
    start(limits);
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
    const std::string refused = "p1=sign-in" + credentials(m_login, "wrong");
    const auto answerFor = [&](const std::string &body, const std::string &address) {
        std::string request = RawClient::request(body);
        request.insert(request.find("Content-Length"),
                       "X-Forwarded-For: 192.0.2.1\r\nX-Forwarded-For: " + address);
        RawClient client(port());
        client.send(request);
        return client.read().body();
    };
    start(/*limits=*/{}, {.trusted = {*http::readNetwork("127.0.0.0/8")}});
    const std::string tooMany = "Too many failed attempts. Please wait a minute and try again.";
    for (int i = 0; i < 10;
         ++i) // each by another login, so that only the address is what they have in common
        answerFor("p1=sign-in" + credentials(std::to_string(i), "wrong"), "192.0.2.7, 203.0.113.1:99\r\n");
    EXPECT_EQ(answerFor(asAnna("sign-in"), "203.0.113.1\r\n"), tooMany);
    EXPECT_EQ(answerFor(asAnna("sign-in"), "203.0.113.2\r\n"), "OK");
    for (int i = 10; i < 20; ++i)
        answerFor("p1=sign-in" + credentials(std::to_string(i), "wrong"), "nonsense\r\n");
    EXPECT_EQ(answerFor("p1=sign-in" + credentials("20", "wrong"), "\r\n"), tooMany); // the proxy's own
}

TEST_F(Http, TakesAProxysWordAtTheBeginningOfAConnection)
{
    Limits limits;
    limits.connectionsPerPeer = 1;
    limits.refusedConnections = 0;
    start(limits,
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
    RawClient other(port());
    other.send(greeting("203.0.113.2") + RawClient::request(asAnna("sign-in")));
    EXPECT_EQ(other.read().body(), "OK");
    RawClient unannounced(port());
    unannounced.send(RawClient::request(asAnna("sign-in")));
    EXPECT_TRUE(unannounced.isClosedSilently());
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
    const auto holds = [](const char *network, const char *address) {
        const http::Proxies proxies{.trusted = {http::readNetwork(network).value()}};
        return proxies.isTrusted(boost::asio::ip::make_address(address));
    };
    EXPECT_TRUE(holds("10.1.0.0/15", "10.0.255.255") && holds("10.0.0.1", "::ffff:10.0.0.1"));
    EXPECT_FALSE(holds("10.0.0.0/15", "10.2.0.0") || holds("10.0.0.1", "10.0.0.2"));
    EXPECT_TRUE(holds("2001:db8::/33", "2001:db8:7fff::1") && holds("::/0", "10.0.0.1"));
    EXPECT_FALSE(holds("2001:db8::/33", "2001:db8:8000::1") || holds("0.0.0.0/0", "2001:db8::1"));
    for (const char *wrong : {"", "10.0.0", "10.0.0.0/", "10.0.0.0/33", "10.0.0.0/-1", "::/129", "::/1x"})
        EXPECT_FALSE(http::readNetwork(wrong)) << wrong;
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
    EXPECT_EQ(done.substr(10), "1z"
                               "a"
                               "b"
                               "2");
}

TEST_F(Http, SaysThatItIsBusyWhenTooManyPasswordsWait)
{
    Limits limits;
    limits.hashingThreads = 0;
    limits.waitingHashes = 0;
    start(limits);
    const auto answer = RawClient(port()).post(asAnna("sign-in"));
    EXPECT_EQ(answer.result_int(), 503U);
    EXPECT_EQ(answer.body(), "The service is busy. Please try again in a moment.");
    EXPECT_FALSE(answer.keep_alive());
}

TEST_F(Http, SaysThatItIsBusyWhenBodiesThatArrivedFillTheMemory)
{
    Limits limits;
    limits.bodiesInMemory = 200'000;
    start(limits);
    const auto body = [&](std::size_t size) {
        return asAnna("create-sets", "&p4=x&p5=" + std::string(size, 'x'));
    };
    RawClient holder(port()); // what is only announced takes no room
    holder.send(RawClient::request(body(200'000)).substr(0, 500));
    RawClient client(port());
    EXPECT_EQ(client.post(body(190'000)).body(), "OK");
    EXPECT_EQ(client.post(body(300'000)).result_int(), 503U);
    EXPECT_EQ(RawClient(port()).post(body(190'000)).body(), "OK");
}

TEST_F(Http, SaysThatItIsBusyWhenARequestTakesTooLong)
{
    Limits limits;
    limits.handlerTime = std::chrono::milliseconds(50);
    start(limits);
    m_database.write([&](store::Connection &) { // whoever else wants to write has to wait
        const auto answer = RawClient(port()).post(asAnna("create-some-goals", "&p4=" + goal("late")));
        EXPECT_EQ(answer.result_int(), 503U);
        EXPECT_EQ(answer.body(), "Error");
    });
}

TEST_F(Http, ServesManyConnectionsAtOnce)
{
    start();
    std::vector<std::future<void>> clients(8);
    for (std::future<void> &running : clients)
        running = std::async(std::launch::async, [&] {
            RawClient client(port());
            for (int j = 0; j < 5; ++j) {
                EXPECT_EQ(client.post(asAnna("create-sets", "&p4=x")).body(), "OK");
                EXPECT_EQ(client.post(asAnna("get-areas")).result_int(), 200U);
            }
        });
    clients.clear(); // once they have ended
    EXPECT_EQ(column(postAsAnna("get-sets"), "name").size(),
              std::string("[My wheel]").size() + 40 * std::string("[x]").size());
}

TEST_F(Http, DrainsByFinishingWhatWasBegun)
{
    start();
    RawClient idle(port());
    EXPECT_EQ(idle.post(asAnna("sign-in")).body(), "OK");
    RawClient begun(port());
    const std::string request = RawClient::request(asAnna("create-sets", "&p4=Last"));
    EXPECT_EQ(begun.post(asAnna("sign-in")).body(), "OK");
    begun.send(request.substr(0, request.size() - 2));
    EXPECT_EQ(idle.post(asAnna("sign-in")).body(), "OK"); // by now that has arrived
    m_server->drain();
    EXPECT_TRUE(idle.isClosedSilently());
    begun.send(request.substr(request.size() - 2));
    const auto answer = begun.read();
    EXPECT_EQ(answer.body(), "OK");
    EXPECT_FALSE(answer.keep_alive());
    begun.endSending();
    m_thread.join();
    EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[My wheel][Last]");
}

TEST(ConnectionCounts, LimitConnectionsPerPeerAndAltogether)
{
    using Welcome = ConnectionCounts::Welcome;
    Limits limits;
    limits.connections = 3;
    limits.connectionsPerPeer = 1;
    limits.refusedConnections = 1;
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
