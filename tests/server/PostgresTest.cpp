#include "RawClient.h"
#include "ServerProcess.h"
#include "ServiceFixture.h"
#include "Sets.h"

#include <array>
#include <future>
#include <latch>
#include <thread>

using namespace tarvex;
using store::Connection;

namespace {

constexpr std::chrono::milliseconds betweenLooks{5};

/// Ends the sessions of the service that are in such a state.
std::string endingSessions(const std::string &state)
{
    return "SELECT COUNT(pg_terminate_backend(pid)) FROM pg_stat_activity WHERE pid <> pg_backend_pid()"
           " AND application_name = 'tarvex-server' AND " +
           state;
}

/// A service on a PostgreSQL server, and somebody else's session there.
struct Postgres : ServiceFixture
{
    Postgres() { m_account = number("SELECT account_id FROM account"); }

    std::int64_t number(const std::string &query) { return m_other.numberOf(query); }
    std::int64_t setsNamed(const std::string &name)
    {
        return number("SELECT COUNT(*) FROM goal_set WHERE name = '" + name + "'");
    }
    auto createSetLater(const std::string &name)
    {
        return std::async([this, name] {
            m_database.write(
                [&](Connection &connection) { createSet(connection, m_account, name, /*now=*/0); });
        });
    }

    store::PostgresConnection m_other{databaseUrl(m_folder)};
    std::int64_t m_account = 0;
};

} // namespace

TEST_F(Postgres, GoesOnWhenItsSessionsAreEnded)
{
    postAsAnna("get-sets");
    for (int i = 0; i < 20; ++i) {
        number(endingSessions("true"));
        if (i % 2 == 0)
            EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[My wheel]");
        else
            EXPECT_EQ(postAsAnna("set-area-value", "&p4=1&p5=" + std::to_string(i)), "OK");
    }
    EXPECT_EQ(number("SELECT value FROM area WHERE area_id = 1"), 19);
}

TEST_F(Postgres, FindsOutWhatBecameOfACommitWhoseAnswerWasLost)
{
    // A transaction that waits for a standby has committed already, when its session ends.
    m_other.execute("ALTER SYSTEM SET synchronous_standby_names = 'nobody'");
    m_other.execute("SELECT pg_reload_conf()");
    auto written = createSetLater("once");
    int times = 1;
    while (number("SELECT COUNT(*) FROM pg_stat_activity WHERE wait_event = 'SyncRep'") == 0)
        if (written.wait_for(betweenLooks) == std::future_status::ready) { // not all there knew it yet
            written = createSetLater("once");
            ++times;
        }
    number(endingSessions("wait_event = 'SyncRep'"));
    m_other.execute("ALTER SYSTEM RESET synchronous_standby_names");
    m_other.execute("SELECT pg_reload_conf()");
    EXPECT_NO_THROW(written.get());
    EXPECT_EQ(setsNamed("once"), times);

    // One that is ended before it commits is done anew.
    m_other.execute("BEGIN; SELECT 1 FROM account FOR UPDATE");
    written = createSetLater("again");
    while (number("SELECT COUNT(*) FROM pg_stat_activity WHERE wait_event_type = 'Lock'") == 0)
        std::this_thread::sleep_for(betweenLooks);
    number(endingSessions("wait_event_type = 'Lock'"));
    m_other.execute("ROLLBACK");
    EXPECT_NO_THROW(written.get());
    EXPECT_EQ(setsNamed("again"), 1);
}

TEST_F(Postgres, DoesAnewWhatADeadlockEnded)
{
    store::Database second(databaseUrl(m_folder));
    std::latch both(2);
    const auto changed = [&](store::Database &database, int first, int then) {
        return std::async([&, first, then] {
            bool isFirstTime = true;
            const auto raise = [](Connection &connection, int area) {
                connection.change("UPDATE area SET value = value + 1 WHERE area_id = $1", area);
            };
            database.write([&](Connection &connection) {
                // Anew, it lets the other one go first, which may be slow to take the lock that is free now.
                while (!isFirstTime && number("SELECT MAX(value) FROM area WHERE area_id <= 2") == 0)
                    std::this_thread::sleep_for(betweenLooks);
                raise(connection, first);
                if (std::exchange(isFirstTime, false))
                    both.arrive_and_wait();
                raise(connection, then);
            });
        });
    };
    auto one = changed(m_database, /*first=*/1, /*then=*/2);
    auto other = changed(second, /*first=*/2, /*then=*/1);
    EXPECT_NO_THROW(one.get());
    EXPECT_NO_THROW(other.get());
    EXPECT_EQ(number("SELECT MIN(value) * 10 + MAX(value) FROM area WHERE area_id <= 2"), 22);
}

TEST_F(Postgres, ServesOneDatabaseFromSeveralProcesses)
{
    const std::string arguments =
        "serve --listen 127.0.0.1:0 --secret secret --database " + databaseUrl(m_folder);
    std::vector<std::unique_ptr<ServerProcess>> servers;
    std::vector<std::uint16_t> ports;
    for (int i = 0; i < 3; ++i) {
        servers.push_back(std::make_unique<ServerProcess>(m_folder, arguments));
        ports.push_back(servers.back()->port());
    }
    // They sign the same people up, and save for the same account, at the same time.
    std::array<std::future<int>, 6> signUps;
    for (std::size_t i = 0; auto &signUp : signUps)
        signUp = std::async([&, port = ports[i++ % 3]] {
            int done = 0;
            RawClient client(port);
            for (int n = 0; n < 5; ++n) {
                done += client
                            .post("p1=create-new-user&p2=" + std::to_string(n) +
                                  "@example.org&p3=b&p4=C&type=json")
                            .body() == R"({"result":"OK"})";
                EXPECT_EQ(client.post(asAnna("create-some-goals", "&p4=" + goal("x") + goal("y"))).body(),
                          "OK");
            }
            return done;
        });
    int signedUp = 0;
    for (auto &signUp : signUps)
        signedUp += signUp.get();
    EXPECT_EQ(signedUp, 5);
    EXPECT_EQ(number("SELECT COUNT(*) FROM account"), 6);
    EXPECT_EQ(number("SELECT accounts FROM account_count"), 6);
    EXPECT_EQ(number("SELECT next_goal_id - 1 FROM account WHERE goals > 0"), 60);

    // What one refused, the others know; what one is told, they all are.
    EXPECT_EQ(RawClient(ports[0]).post(asAnna("create-some-goals", "&p4=broken")).body(), "Error");
    EXPECT_EQ(RawClient(ports[1]).post(asAnna("delete-some-goals", "&p4=1;2;")).body(), "Error");
    EXPECT_EQ(RawClient(ports[1]).post(asAnna("delete-some-goals", "&p4=1;2;")).body(), "OK");
    servers[0]->child.terminate();
    EXPECT_EQ(ServiceFixture::column(RawClient(ports[2]).post(asAnna("get-goals", "&p4=1&p5=3")).body(), "id")
                  .substr(0, 6),
              "[3][4]");
}

TEST_F(Postgres, RefusesADatabaseThatDoesNotKnowItsEncoding)
{
    store::PostgresConnection session(testServer);
    session.execute("CREATE DATABASE bytes ENCODING 'SQL_ASCII' TEMPLATE template0");
    const std::string server = testServer;
    const std::string url =
        server.substr(0, server.find("/postgres?")) + "/bytes" + server.substr(server.find('?'));
    EXPECT_THROW(store::Database database(url), store::CannotOpen);
    session.execute("DROP DATABASE bytes");
}

TEST_F(Postgres, MakesItsTablesBesideAnExtensionsViewsAndNotBesideOthersTables)
{
    const auto openBeside = [](const char *made) {
        const TemporaryFolder elsewhere;
        store::PostgresConnection(databaseUrl(elsewhere)).execute(made);
        const store::Database database(databaseUrl(elsewhere));
    };
    EXPECT_NO_THROW(openBeside("CREATE VIEW pg_stat_statements AS SELECT 1 AS calls"));
    EXPECT_THROW(openBeside("CREATE TABLE accounts (name text)"), store::CannotOpen);
}

TEST_F(Postgres, MovesToAFileAndBackWithAllThatItHolds)
{
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("caf\xC3\xA9") + goal("gone")), "OK");
    EXPECT_EQ(postAsAnna("delete-goal", "&p4=2"), "OK");
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=broken"), "Error");
    EXPECT_EQ(signUp("b@example.org", "x", "Ben"), R"({"result":"OK"})");
    const TemporaryFolder elsewhere;
    const std::string there = databaseUrl(elsewhere);
    const auto moved = [&](const std::string &from, const std::string &to) {
        return ServerProcess(elsewhere, "migrate --from " + from + " --to " + to).ended();
    };
    EXPECT_EQ(moved(databaseUrl(m_folder), "sqlite:wheel.db"), std::pair(0, std::string()));
    EXPECT_EQ(moved("sqlite:wheel.db", there), std::pair(0, std::string()));
    EXPECT_EQ(moved("sqlite:wheel.db", there),
              std::pair(1, std::string("tarvex-server: The database to go to is in use already.\n")));
    EXPECT_EQ(moved("sqlite:none.db", there).second, "tarvex-server: There is no database none.db.\n");
    {
        const store::Database inUse("sqlite:" + (elsewhere.path() / "wheel.db").string());
        EXPECT_EQ(moved("sqlite:wheel.db", "sqlite:third.db").second,
                  "tarvex-server: The database wheel.db is in use by another process; stop that first.\n");
    }

    store::Database copy(there);
    requests::Service service(copy, requests::openInstallation(copy, m_folder.path() / "secret"), clocks());
    m_service.keepHouse();
    for (const std::string &body :
         {asAnna("get-goals", "&p4=1&p5=3"), asAnna("get-areas"), asAnna("delete-some-goals", "&p4=1;"),
          asAnna("delete-some-goals", "&p4=1;")})
        EXPECT_EQ(service.finish(*service.begin({.body = body, .peer = "", .arrival = m_now})).body,
                  post(body))
            << body;
}

TEST_F(Postgres, LosesNothingWhenItsServerIsStoppedAndStartedInTheMiddleOfWrites)
{
    std::atomic<bool> isOver = false;
    auto written = std::async([&] {
        int count = 0;
        while (!isOver) {
            try {
                m_database.write(
                    [](Connection &connection) { connection.change("UPDATE area SET value = value + 1"); });
                ++count;
            } catch (const store::TransactionHindered &) { // it was away for too long, and nothing came of it
            }
        }
        return count;
    });
    for (int i = 0; i < 2; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        ASSERT_EQ(std::system(std::getenv("TARVEX_TEST_POSTGRESQL_RESTART")), 0);
    }
    isOver = true;
    const int count = written.get();
    store::PostgresConnection anew(databaseUrl(m_folder));
    EXPECT_EQ(anew.numberOf("SELECT MIN(value) FROM area"), count);
}
