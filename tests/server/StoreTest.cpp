#include "Accounts.h"
#include "Database.h"
#include "Deleted.h"
#include "Goals.h"
#include "Quotas.h"
#include "Sets.h"
#include "SqliteConnection.h"
#include "TestDatabase.h"
#include "Transfer.h"

#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <set>

using namespace tarvex::store;

namespace {

/// A database with one account, its one area and two sets.
struct StoreTest : testing::Test
{
    StoreTest()
    {
        m_database.write([&](Connection &connection) {
            const NewAccount anna = {.logins = {"A"},
                                     .name = "Anna",
                                     .passwordHash = "hash",
                                     .areas = {{.name = "Health", .color = "#1", .value = 6}}};
            m_account = createAccount(connection, anna).value();
            createSet(connection, m_account, "first", /*now=*/0);
            createSet(connection, m_account, "second", /*now=*/0);
        });
    }

    void createNamedGoals(Connection &connection, std::int64_t set, const std::vector<std::string> &names)
    {
        for (const std::string &name : names)
            createGoals(connection, m_account, {{.setId = set, .areaId = 1, .name = name}}, /*now=*/0);
    }

    void deleteLiveGoals(Connection &connection, std::int64_t now)
    {
        std::vector<std::int64_t> ids;
        GoalRows goals = goalsOfSet(connection, m_account, /*setId=*/1);
        while (const Goal *goal = goals.next())
            ids.push_back(goal->id);
        deleteGoals(connection, m_account, placedGoals(connection, m_account, ids), now);
    }

    std::string file() const { return m_folder.path() / "wheel.db"; }

    TemporaryFolder m_folder;
    Database m_database{databaseUrl(m_folder)};
    std::int64_t m_account = 0;
};

} // namespace

TEST_F(StoreTest, RemovesForGoodOnlyWhatWasDeletedLongEnoughAgo)
{
    m_database.write([&](Connection &connection) {
        createNamedGoals(connection, /*set=*/1, {"in old set"});
        createNamedGoals(connection, /*set=*/2, {"old", "recent", "live"});
        deleteSet(connection, m_account, /*setId=*/1, /*now=*/100);
        deleteGoals(connection, m_account, placedGoals(connection, m_account, {2}), /*now=*/100);
        deleteGoals(connection, m_account, placedGoals(connection, m_account, {3, 2}), /*now=*/200);
        EXPECT_EQ(purgeDeleted(connection, m_account, /*before=*/150, /*most=*/9), 4);
        std::string left;
        Rows names =
            connection.rows("SELECT name FROM goal UNION ALL SELECT name FROM goal_set ORDER BY name");
        while (names.next())
            left.append(names.text(0)).append(",");
        EXPECT_EQ(left, "live,recent,second,");
    });
}

TEST_F(StoreTest, LeavesNothingOfATransactionThatFailedAndNoValueInTheErrorsText)
{
    std::string text;
    try {
        m_database.write([&](Connection &connection) {
            createSet(connection, m_account, "lost", /*now=*/0);
            createNamedGoals(connection, /*set=*/9, {"secret"});
        });
    } catch (const TransactionFailed &error) {
        text = error.what();
    }
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find("secret"), std::string::npos) << text;
    m_database.write([&](Connection &connection) {
        EXPECT_FALSE(hasSet(connection, m_account, /*setId=*/3));
        EXPECT_EQ(createSet(connection, m_account, "next", /*now=*/0), 3);
    });
}

TEST_F(StoreTest, GivesNoIdThatTheWireCannotCarry)
{
    m_database.write([&](Connection &connection) {
        connection.change("UPDATE account SET next_set_id = 2147483647");
        EXPECT_EQ(createSet(connection, m_account, "last", /*now=*/0), 2'147'483'647);
        EXPECT_THROW(createSet(connection, m_account, "beyond", /*now=*/0), TransactionFailed);
    });
}

TEST_F(StoreTest, WritesThatWaitShareACommitAndNoFailure)
{
    std::promise<void> gate;
    std::vector<std::string> order;
    const auto create = [&](const std::string &name, bool fails) {
        m_database.write(
            [this, name, fails](Connection &connection) {
                createSet(connection, m_account, name, /*now=*/0);
                if (fails)
                    throw std::runtime_error(name);
            },
            [&order, name](const std::exception_ptr &failure) {
                order.push_back(name + (failure ? "!" : ""));
            });
    };
    m_database.write([&](Connection &) { gate.get_future().wait(); }, [](const std::exception_ptr &) {});
    create("third", /*fails=*/false);
    create("lost", /*fails=*/true);
    create("fourth", /*fails=*/false);
    m_database.read([&](Connection &connection) { // which waits for no write
        EXPECT_EQ(sets(connection, m_account).size(), 2U);
        EXPECT_TRUE(order.empty());
    });
    gate.set_value();
    m_database.write(
        [&](Connection &connection) { EXPECT_EQ(createSet(connection, m_account, "fifth", /*now=*/0), 5); });
    EXPECT_EQ(order, (std::vector<std::string>{"third", "lost!", "fourth"}));
}

TEST_F(StoreTest, GivesUpReadingWhatTakesMoreThanAMoment)
{
    if (testServer != nullptr)
        GTEST_SKIP(); // no moment is short enough there
    const auto isRead = [&](std::int64_t set) {
        std::size_t found = 0;
        return m_database.readInAMoment([&](Connection &connection) {
            GoalRows goals = goalsOfSet(connection, m_account, set);
            while (goals.next() != nullptr)
                ++found;
        }) && found == 2;
    };
    m_database.write([&](Connection &connection) {
        createNamedGoals(connection, /*set=*/1, {"one", "two"});
        createGoals(connection, m_account,
                    std::vector<Goal>(10'000, Goal{.setId = 2, .areaId = 1, .name = {}}), /*now=*/0);
    });
    for (int again = 0; again < 3; ++again) {
        EXPECT_FALSE(isRead(2));
        EXPECT_TRUE(isRead(1));
    }
}

TEST_F(StoreTest, KeepsSoManyDeletedGoalsOfAnAccountAtMost)
{
    m_database.write([&](Connection &connection) {
        const std::vector<Goal> goals(20'000, Goal{.setId = 1, .areaId = 1, .name = "x"});
        for (std::int64_t round = 0; round < 6; ++round) {
            createGoals(connection, m_account, goals, /*now=*/0);
            deleteLiveGoals(connection, /*now=*/round);
        }
        Rows left = connection.rows("SELECT COUNT(*), MIN(deleted_at) FROM goal");
        ASSERT_TRUE(left.next());
        EXPECT_EQ(left.number(0), 100'000);
        EXPECT_EQ(left.number(1), 1); // the oldest have gone
    });
}

TEST_F(StoreTest, KeepsSoMuchOfTheNamesOfDeletedGoals)
{
    m_database.write([&](Connection &connection) {
        const std::vector<Goal> goals(250, Goal{.setId = 1, .areaId = 1, .name = std::string(60'000, 'x')});
        for (std::int64_t round = 1; round <= 6; ++round) {
            createGoals(connection, m_account, goals, /*now=*/0);
            deleteLiveGoals(connection, /*now=*/round);
        }
        Rows left = connection.rows("SELECT SUM(OCTET_LENGTH(name)), MAX(goal_id) FROM goal");
        ASSERT_TRUE(left.next());
        EXPECT_LE(left.number(0), Quotas::deletedBytes + Quotas::goalBytes);
        EXPECT_GE(left.number(0), 2 * 250 * 60'000);
        EXPECT_EQ(left.number(1), 6 * 250);
    });
}

TEST_F(StoreTest, HoldsSoMuchOfTheNamesOfSets)
{
    m_database.write([&](Connection &connection) {
        const std::string name(60'000, 'x');
        for (int i = 0; i < Quotas::setNameBytes / 60'000; ++i)
            createSet(connection, m_account, name, /*now=*/0);
        EXPECT_THROW(createSet(connection, m_account, name, /*now=*/0), QuotaExceeded);
        EXPECT_THROW(renameSet(connection, m_account, /*setId=*/1, name), QuotaExceeded);
    });
}

TEST_F(StoreTest, WhatWasRemovedFromAFileMakesRoom)
{
    const std::filesystem::path place = m_folder.path() / "other.db";
    std::ofstream(place).close(); // empty
    SqliteConnection file(place);
    file.execute("CREATE TABLE note (text TEXT)");
    file.execute("INSERT INTO note VALUES (ZEROBLOB(1000000))");
    const std::int64_t full = file.size();
    file.execute("DELETE FROM note");
    EXPECT_LT(file.size(), full - 900'000);
}

TEST_F(StoreTest, CountsTheTimeToPurgingByThatWhichItRan)
{
    m_database.write([&](Connection &connection) {
        EXPECT_EQ(movePurgeClock(connection, /*secondsRun=*/5, /*now=*/1000), 1000);
        EXPECT_EQ(movePurgeClock(connection, /*secondsRun=*/60, /*now=*/9'000'000), 1060);
        EXPECT_EQ(movePurgeClock(connection, /*secondsRun=*/60, /*now=*/1100), 1100);
        EXPECT_EQ(movePurgeClock(connection, /*secondsRun=*/60, /*now=*/100), 100);
    });
}

TEST_F(StoreTest, KeepsItsDataInAFileForItsOwnerAlone)
{
    if (testServer != nullptr)
        GTEST_SKIP();
    for (const char *suffix : {"", "-wal", "-shm"})
        std::filesystem::permissions(file() + suffix, std::filesystem::perms(0644));
    Database second(databaseUrl(m_folder));
    for (const char *suffix : {"", "-wal", "-shm"})
        EXPECT_EQ(std::filesystem::status(file() + suffix).permissions(), std::filesystem::perms(0600));
    second.read([](Connection &connection) { EXPECT_TRUE(findCredentials(connection, "A").has_value()); });
}

TEST_F(StoreTest, KnowsAllThatIsToBeMovedToAnotherDatabase)
{
    std::set<std::string> known;
    for (const Table &table : tables())
        for (const std::string &column : table.columns)
            known.insert(table.name + "." + column);
    std::set<std::string> there;
    m_database.read([&](Connection &connection) {
        Rows columns = connection.rows(
            testServer != nullptr
                ? "SELECT table_name, column_name FROM information_schema.columns"
                  " WHERE table_schema = current_schema() AND table_name NOT IN ('schema_version', "
                  "'writer_mark')"
                : "SELECT made.name, its.name FROM sqlite_master AS made, pragma_table_info(made.name) AS its"
                  " WHERE made.type = 'table' AND made.name NOT IN ('schema_version', 'writer_mark')");
        while (columns.next())
            there.insert(std::string(columns.text(0)) + "." + std::string(columns.text(1)));
    });
    EXPECT_EQ(known, there);
}

TEST_F(StoreTest, OpensDatabasesOfItsOwnAlone)
{
    const TemporaryFolder other;
    if (testServer != nullptr) {
        PostgresConnection(databaseUrl(other)).execute("CREATE TABLE notes (id INTEGER)");
    } else {
        m_database.write([](Connection &connection) { // as databases began
            connection.change("PRAGMA application_id = 0");
        });
        std::ofstream(other.path() / "wheel.db").close();
        SqliteConnection(other.path() / "wheel.db").execute("CREATE TABLE notes (id INTEGER)");
    }
    EXPECT_NO_THROW(Database database(databaseUrl(m_folder)));
    EXPECT_THROW(Database database(databaseUrl(other)), CannotOpen);
}
