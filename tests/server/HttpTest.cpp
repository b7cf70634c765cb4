#include "PeerAddress.h"
#include "RawClient.h"
#include "SampleRows.h"
#include "Server.h"
#include "ServiceFixture.h"

#include <future>
#include <thread>

using namespace tarvex;
using http::ConnectionCounts;
using http::Limits;

namespace {

/// A server over the service of the fixture, on a thread of its own.
class Http : public ServiceFixture
{
public:
    ~Http() override { stop(); }

protected:
    void start(const Limits &limits = {})
    {
        m_server = std::make_unique<http::Server>(m_service, "127.0.0.1", /*port=*/0, limits);
        m_thread = std::thread([this] { m_server->run(); });
    }
    void stop()
    {
        if (!m_thread.joinable())
            return;
        m_server->drain();
        m_thread.join();
    }
    std::uint16_t port() const { return m_server->port(); }

    std::unique_ptr<http::Server> m_server;
    std::thread m_thread;
};

} // namespace

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
    EXPECT_EQ(served.post(asAnna("sign-in")).body(), "OK");
    {
        RawClient refused(port());
        const auto answer = refused.post(asAnna("set-checked-area-percent", "&p5=1"));
        EXPECT_EQ(answer.result_int(), 503U);
        EXPECT_EQ(answer.body(), "");
        RawClient closed(port());
        EXPECT_TRUE(closed.isClosedSilently());
    }
    EXPECT_EQ(served.post(asAnna("sign-in")).body(), "OK");
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
    begun.send(RawClient::request(asAnna("sign-in")) + request.substr(0, request.size() - 2));
    EXPECT_EQ(begun.read().body(), "OK");
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
    for (const char task : {'a', 'b', 'c'})
        queues.enter(/*accountId=*/1, [&started, task] { started += task; });
    queues.enter(/*accountId=*/2, [&started] { started += 'x'; });
    EXPECT_EQ(started, "ax");
    queues.leave(1);
    EXPECT_EQ(started, "axb");
    auto ended = std::async(std::launch::async, [&] { queues.end(); });
    queues.leave(2);
    for (bool isIn = true; isIn;) { // until it lets nothing more in
        isIn = false;
        queues.enter(/*accountId=*/3, [&isIn] { isIn = true; });
        if (isIn)
            queues.leave(3);
    }
    queues.leave(1);
    ended.get();
    EXPECT_EQ(started, "axb");
}

TEST(PeerName, IsWhatOneSubscriberHas)
{
    for (const SampleRow &row : sampleRows("peer-names.txt"))
        EXPECT_EQ(http::peerName(boost::asio::ip::make_address(row[0])), row[1]) << row[0];
}
