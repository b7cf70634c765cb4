#include "HttpFixture.h"
#include "SampleRows.h"

#include <future>

using namespace std::chrono_literals;
using namespace tarvex;
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
    RawClient saver(port());
    saver.post(asAnna("create-some-goals", "&p4=" + goal("kept")));
    const std::string save = RawClient::request(asAnna("create-some-goals", "&p4=" + goal("new")));
    for (const std::size_t missing : {1U, 8U, 57U, 120U}) { // the last ends among the credentials
        RawClient client(port());
        client.send(save.substr(0, save.size() - missing));
        client.endSending();
        EXPECT_TRUE(client.isClosedSilently()) << missing;
        EXPECT_EQ(column(saver.post(asAnna("get-goals", "&p4=1&p5=3")).body(), "name"), "[kept]") << missing;
        if (missing < 120) {
            EXPECT_EQ(saver.post(asAnna("delete-some-goals", "&p4=1;")).body(), "Error") << missing;
        }
    }
}

TEST_F(Http, RefusesALargeBodyInTheWordsOfItsKindAndGoesOn)
{
    start({.body = 1000, .discardedBody = 100'000});
    RawClient client(port());
    client.post(asAnna("create-some-goals", "&p4=" + goal("kept")));
    std::promise<void> released;
    m_database.write([&](store::Connection &) { released.get_future().wait(); },
                     [](const std::exception_ptr &) {});
    client.send(RawClient::request(asAnna("create-some-goals", "&p4=" + goal(std::string(50'000, 'x')))));
    auto answered = std::async(std::launch::async, [&] { return client.read(); });
    EXPECT_EQ(answered.wait_for(100ms), std::future_status::timeout) << "before other processes know";
    released.set_value();
    const auto refused = answered.get();
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
    const auto answerTo = [&](const std::string &body) {
        client.send("POST http://x/tarvex/ HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: " +
                    std::to_string(body.size()) + "\r\n\r\n");
        EXPECT_EQ(client.read().result_int(), 100U);
        client.send(body);
        return client.read();
    };
    EXPECT_EQ(answerTo(asAnna("create-some-goals", "&p4=" + goal("kept"))).body(), "OK");
    const std::string large = "&p4=" + goal(std::string(5'000'000, 'x'));
    EXPECT_EQ(answerTo(asAnna("create-some-goals", large)).result_int(), 413U);
    EXPECT_EQ(client.post(asAnna("delete-some-goals", "&p4=1;")).body(), "Error"); // the save was seen
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
    start({.connections = 1, .refusedConnections = 1});
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

TEST_F(Http, SaysThatItIsBusyWhenTooManyPasswordsWait)
{
    start({.hashingThreads = 0, .waitingHashes = 0});
    const auto answer = RawClient(port()).post(asAnna("sign-in"));
    EXPECT_EQ(answer.result_int(), 503U);
    EXPECT_EQ(answer.body(), "The service is busy. Please try again in a moment.");
    EXPECT_FALSE(answer.keep_alive());
}

TEST_F(Http, SaysThatItIsBusyWhenBodiesThatArrivedFillTheMemory)
{
    start({.bodiesInMemory = 200'000});
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

TEST_F(Http, SaysThatItIsBusyWhenAnswersThatNobodyTakesFillTheMemory)
{
    start({.answersInMemory = 100'000});
    const std::string large = goal(std::string(60'000, 'x'));
    const std::string list = boost::algorithm::join(std::vector(40, large), "");
    for (int i = 0; i < 2; ++i) // more than the system holds for a connection
        ASSERT_EQ(postAsAnna("create-some-goals", "&p4=" + list), "OK");
    postAsAnna("create-sets", "&p4=Small");
    postAsAnna("create-some-goals",
               "&p4=" + boost::replace_all_copy(large + large, "setsId:1;", "setsId:2;"));
    const std::string fewGoals = asAnna("get-complex-goals-for-sets", "&p4=2");
    RawClient client(port());
    for (int i = 0; i < 2; ++i) // each as large as may be, and sent before the next
        EXPECT_GT(client.post(fewGoals).body().size(), 120'000U);
    {
        RawClient slow(port());
        slow.send(RawClient::request(asAnna("get-complex-goals-for-sets", "&p4=1")));
        for (const std::string &request : {asAnna("get-complex-goals-for-sets", "&p4=1"), fewGoals}) {
            const auto answer = RawClient(port()).post(request);
            EXPECT_EQ(answer.result_int(), 503U);
            EXPECT_EQ(answer.body(), "Error");
        }
        EXPECT_EQ(client.post(asAnna("get-sets")).result_int(), 200U); // what is small goes on
    }
    while (RawClient(port()).post(fewGoals).body().size() <
           120'000U) // until it is seen that the slow one left
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

TEST_F(Http, SaysThatItIsBusyWhenARequestTakesTooLong)
{
    start({.handlerTime = std::chrono::milliseconds(50)});
    m_database.write([&](store::Connection &) { // whoever else wants to write has to wait
        const auto answer = RawClient(port()).post(asAnna("create-some-goals", "&p4=" + goal("late")));
        EXPECT_EQ(answer.result_int(), 503U);
        EXPECT_EQ(answer.body(), "Error");
    });
}

TEST_F(Http, DrainsByFinishingWhatWasBegun)
{
    start({.drainTime = 1s});
    RawClient idle(port());
    EXPECT_EQ(idle.post(asAnna("sign-in")).body(), "OK");
    RawClient begun(port());
    const std::string request = RawClient::request(asAnna("create-sets", "&p4=Last"));
    EXPECT_EQ(begun.post(asAnna("sign-in")).body(), "OK");
    begun.send(request.substr(0, request.size() - 2));
    RawClient late(port());
    const std::string save = RawClient::request(asAnna("create-some-goals", "&p4=" + goal("new")));
    EXPECT_EQ(late.post(asAnna("sign-in")).body(), "OK");
    late.send(save.substr(0, save.size() - 1));
    EXPECT_EQ(idle.post(asAnna("sign-in")).body(), "OK"); // by now that has arrived
    m_server->drain();
    EXPECT_TRUE(idle.isClosedSilently());
    begun.send(request.substr(request.size() - 2));
    const auto answer = begun.read();
    EXPECT_EQ(answer.body(), "OK");
    EXPECT_FALSE(answer.keep_alive());
    begun.endSending();
    m_thread.join();
    EXPECT_EQ(anotherSession(m_folder)->numberOf("SELECT count(*) FROM refused_save"), 1) << "the late one";
    EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[My wheel][Last]");
}
