#include "Accounts.h"
#include "Areas.h"
#include "Database.h"
#include "Goals.h"
#include "Sets.h"
#include "TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

using namespace tarvex::store;

namespace {

class StoreTest : public testing::Test
{
protected:
    std::int64_t createAccountWith(const std::vector<std::string> &digests)
    {
        std::optional<std::int64_t> id;
        m_database.write([&](Connection &connection) {
            id = createAccount(connection, {.loginDigests = digests,
                                            .name = "Anna",
                                            .passwordHash = "hash of " + digests.front(),
                                            .areas = {{"Health", "#1", 6}, {"Home", "#2", 4}},
                                            .createdAt = 1000});
        });
        return id.value_or(0);
    }

    std::int64_t createNamedSet(std::int64_t account, const std::string &name)
    {
        std::int64_t id = 0;
        m_database.write([&](Connection &connection) { id = createSet(connection, account, name); });
        return id;
    }

    void createNamedGoal(std::int64_t account, std::int64_t set, const std::string &name)
    {
        m_database.write([&](Connection &connection) {
            createGoals(connection, account, {{.setId = set, .areaId = 1, .name = name}});
        });
    }

    std::vector<std::string> setNames(std::int64_t account)
    {
        std::vector<std::string> names;
        m_database.read([&](Connection &connection) {
            for (const Set &set : sets(connection, account))
                names.push_back(set.name);
        });
        return names;
    }

    TemporaryFolder m_folder;
    Database m_database{m_folder.databaseUrl()};
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(StoreTest, CountsIdsPerAccountAndNeverGivesOneTwice)
{
    const std::int64_t anna = createAccountWith({"A"});
    const std::int64_t ben = createAccountWith({"B"});
    EXPECT_EQ(createNamedSet(anna, "x"), 1);
    EXPECT_EQ(createNamedSet(ben, "x"), 1);
    m_database.write([&](Connection &connection) { deleteSet(connection, anna, /*setId=*/1, /*now=*/1); });
    EXPECT_EQ(createNamedSet(anna, "y"), 2);
}

TEST_F(StoreTest, RemovesForGoodOnlyWhatWasDeletedLongEnoughAgo)
{
    const std::int64_t account = createAccountWith({"A"});
    createNamedSet(account, "old");
    createNamedSet(account, "kept");
    createNamedGoal(account, /*set=*/1, "in old set");
    for (const char *name : {"old", "recent", "live"})
        createNamedGoal(account, /*set=*/2, name);
    m_database.write([&](Connection &connection) {
        deleteSet(connection, account, /*setId=*/1, /*now=*/100);
        deleteGoals(connection, account, {2}, /*now=*/100);
        deleteGoals(connection, account, {3}, /*now=*/200);
        purgeDeleted(connection, account, /*before=*/150);
        int goals = 0;
        int setCount = 0;
        connection.session() << "SELECT (SELECT COUNT(*) FROM goal), (SELECT COUNT(*) FROM goal_set)",
            soci::into(goals), soci::into(setCount);
        EXPECT_EQ(goals, 2);
        EXPECT_EQ(setCount, 1);
    });
}

TEST_F(StoreTest, LeavesNothingOfATransactionThatFailedAndNoValueInTheErrorsText)
{
    const std::int64_t account = createAccountWith({"A"});
    std::string text;
    try {
        m_database.write([&](Connection &connection) {
            createSet(connection, account, "lost");
            createGoals(connection, account, {{.setId = 9, .areaId = 1, .name = "secret"}});
        });
    } catch (const TransactionFailed &error) {
        text = error.what();
    }
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find("secret"), std::string::npos) << text;
    EXPECT_EQ(setNames(account), Names{});
    EXPECT_EQ(createNamedSet(account, "next"), 1);
}

TEST_F(StoreTest, KeepsItsDataInAFileForItsOwnerAlone)
{
    createAccountWith({"A"});
    const auto mode = std::filesystem::status(m_folder.path() / "wheel.db").permissions();
    EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    Database second(m_folder.databaseUrl());
    second.read([](Connection &connection) { EXPECT_TRUE(findCredentials(connection, "A").has_value()); });
}

TEST(Database, SaysInOneSentenceWhyItCannotBeOpened)
{
    TemporaryFolder folder;
    std::filesystem::create_directories(folder.path() / "newer folder");
    const std::string newer = (folder.path() / "newer folder" / "wheel.db").string();
    {
        Database made("sqlite:" + newer);
    }
    soci::session session(soci::sqlite3, "db=\"" + newer + "\"");
    session << "UPDATE schema_version SET version = 99";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"sqlite:" + newer, "newer tarvex-server"},
        {"sqlite:" + folder.path().string(), "cannot be opened"},
        {"sqlite:/proc/no/wheel.db", "cannot be made"},
        {"postgresql://host/wheel", "does not serve PostgreSQL"},
        {"wheel.db", "sqlite:PATH"},
        {"sqlite:", "sqlite:PATH"},
    };
    for (const auto &[url, reason] : rows) {
        try {
            Database database(url);
            ADD_FAILURE() << url;
        } catch (const CannotOpen &error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
        }
    }
}
