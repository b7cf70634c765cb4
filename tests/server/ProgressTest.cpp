#include "Progress.h"

#include "Deleted.h"
#include "Exporting.h"
#include "Goals.h"
#include "SampleRows.h"
#include "Schema.h"
#include "ServiceFixture.h"
#include "Sets.h"
#include "Undeleting.h"

#include <fstream>

using namespace tarvex;

namespace {

constexpr std::int64_t day = 24LL * 60 * 60;

std::string words(const store::OfAreas &numbers)
{
    std::string text;
    for (const std::int32_t number : numbers)
        text += (text.empty() ? "" : " ") + std::to_string(number);
    return text;
}

std::string words(const std::vector<store::DayOfAreas> &days)
{
    std::string text;
    for (const store::DayOfAreas &noted : days)
        text += std::to_string(noted.day) + ": " + words(noted.numbers) + "\n";
    return text;
}

/// What the service notes while Anna works, a request a day.
struct Progress : ServiceFixture
{
    std::int64_t today() const { return store::dayOf(m_seconds); }

    template<class Read>
    auto read(const Read &work)
    {
        decltype(work(std::declval<store::Connection &>())) found;
        m_database.read([&](store::Connection &connection) { found = work(connection); });
        return found;
    }
    std::string percentsOn(std::int64_t set, std::int64_t when)
    {
        const auto found = read(
            [&](store::Connection &connection) { return store::percentsOn(connection, anna(), set, when); });
        return found ? words({*found}) : "";
    }
    std::string valuesOn(std::int64_t when)
    {
        const auto found =
            read([&](store::Connection &connection) { return store::valuesOn(connection, anna(), when); });
        return found ? words({*found}) : "";
    }
    std::string span(std::int64_t set, std::int64_t first, std::int64_t last)
    {
        return words(read([&](store::Connection &connection) {
            return store::setProgress(connection, anna(), set, first, last);
        }));
    }

    /// The sets, and "areas", that have something noted for today. What is noted of each at all must be what
    /// clients see.
    std::string notedToday()
    {
        std::string noted;
        const std::string sets = postAsAnna("get-sets");
        std::map<std::int64_t, store::OfAreas> seen;
        for (std::size_t record = sets.find("<id>"); record != std::string::npos;
             record = sets.find("<id>", record + 1)) {
            store::OfAreas &percents = seen[std::stoll(sets.substr(record + 4))];
            for (std::size_t i = 0; i < percents.size(); ++i) {
                const std::string element = "<percent" + std::to_string(i + 1) + ">";
                percents.at(i) = std::stoi(sets.substr(sets.find(element, record) + element.size()));
            }
        }
        for (const auto &[set, percents] : seen) {
            const auto days = read([&, set = set](store::Connection &connection) {
                return store::setProgress(connection, anna(), set, /*firstDay=*/0, today());
            });
            EXPECT_EQ(words(days.back().numbers), words(percents)) << set;
            if (days.back().day == today())
                noted += " " + std::to_string(set);
        }
        const std::string values = valuesOn(today());
        std::string seenValues = column(postAsAnna("get-areas"), "value");
        boost::replace_all(seenValues, "][", " ");
        EXPECT_EQ("[" + values.substr(values.find(' ') + 1), boost::replace_all_copy(seenValues, "]", "\n"));
        return boost::trim_copy(noted + (values.starts_with(std::to_string(today())) ? " areas" : ""));
    }
    std::string nextDay(const std::string &kind, const std::string &rest)
    {
        m_seconds += day;
        postAsAnna(kind, rest);
        return notedToday();
    }
    static std::string goals(int set, int count, int done)
    {
        std::string records;
        for (int i = 0; i < count; ++i)
            records.append("name:x;priority:5;checked:")
                .append(i < done ? "1" : "0")
                .append(";setsId:" + std::to_string(set) + ";areaId:3;{_end_}");
        return records;
    }
};

} // namespace

TEST_F(Progress, IsNotedOfEachSetThatARequestChanges)
{
    EXPECT_EQ(notedToday(), "1 areas");
    for (const SampleRow &row : sampleRows("noted-progress.txt"))
        EXPECT_EQ(nextDay(row[0], row[1]), row[2]) << row[0] << row[1];
}

TEST_F(Progress, ComesBackWithWhatWasDeleted)
{
    postAsAnna("create-sets", "&p4=Second");
    nextDay("create-some-goals", "&p4=" + goals(/*set=*/2, /*count=*/3, /*done=*/1));
    nextDay("delete-goal", "&p4=1");
    const std::string before = span(2, 0, today());
    nextDay("delete-sets", "&p4=2");
    EXPECT_EQ(span(2, 0, today()), "");
    EXPECT_EQ(percentsOn(2, today()), "");

    m_seconds += day;
    requests::undelete(m_database, anna(), {2}, {}, m_seconds);
    EXPECT_EQ(notedToday(), "2");
    EXPECT_TRUE(span(2, 0, today()).starts_with(before));
    m_seconds += day;
    requests::undelete(m_database, anna(), {}, {1}, m_seconds);
    EXPECT_EQ(notedToday(), "2");
    postAsAnna("delete-sets", "&p4=2"); // and back on the same day
    requests::undelete(m_database, anna(), {2}, {}, m_seconds);
    postAsAnna("set-checked-area-percent", "&p5=3");
    EXPECT_EQ(notedToday(), "2");
}

TEST_F(Progress, OfImportedSetsBeginsWithTheImport)
{
    const wire::AccountExport imported = {
        .name = "Anna",
        .areas = {{.name = "x", .value = 4}},
        .sets = {{.name = "Second", .goals = {{.area = 1, .name = "x"}, {.area = 1, .name = "x"}}}}};
    m_seconds += day;
    requests::importAccount(m_database, anna(), imported, m_seconds);
    EXPECT_EQ(notedToday(), "2 areas");
    m_login = "berta@example.org";
    requests::createImported(m_database, m_hash, {.login = m_login, .password = m_password, .name = "Berta"},
                             m_seconds, imported);
    EXPECT_EQ(notedToday(), "1 areas");
}

TEST_F(Progress, IsTheLastOfADayAndStaysUntilTheNextChange)
{
    const std::int64_t first = today();
    m_seconds = (first + 10) * day;
    postAsAnna("create-some-goals", "&p4=" + goals(/*set=*/1, /*count=*/3, /*done=*/0));
    m_seconds += day - 1;
    postAsAnna("set-checked-area-percent", "&p5=1");
    m_seconds += 1;
    postAsAnna("set-checked-area-percent", "&p5=2");
    const auto on = [&](std::int64_t after, const std::string &third) {
        return std::to_string(first + after) + ": 100 100 " + third + " 100 100 100 100 100\n";
    };
    const std::string all = on(0, "100") + on(10, "33") + on(11, "66");
    EXPECT_EQ(span(1, 0, first + 99), all);
    EXPECT_EQ(span(1, first, first + 11), all);
    EXPECT_EQ(span(1, first + 9, first + 10), on(0, "100") + on(10, "33"));
    EXPECT_EQ(span(1, first + 10, first + 10), on(10, "33"));
    EXPECT_EQ(span(1, first + 90, first + 99), on(11, "66"));
    EXPECT_EQ(span(1, 0, first - 1), "");
    EXPECT_EQ(percentsOn(1, first - 1), "");
    EXPECT_EQ(percentsOn(1, first + 9), on(0, "100"));
    EXPECT_EQ(percentsOn(1, first + 10), on(10, "33"));
    EXPECT_EQ(percentsOn(1, first + 99), on(11, "66"));
    EXPECT_EQ(valuesOn(first - 1), "");
}

TEST_F(Progress, OfAnotherAccountIsNotSeen)
{
    signUp("berta@example.org", m_password, "Berta");
    m_seconds += day;
    const std::string asBerta = credentials("berta@example.org", m_password);
    post("p1=create-some-goals" + asBerta + "&p4=" + goals(/*set=*/1, /*count=*/2, /*done=*/1));
    post("p1=set-area-value" + asBerta + "&p4=1&p5=7");
    EXPECT_EQ(notedToday(), "");
}

TEST_F(Progress, OfDeletedSetsIsPurgedWithThemInSteps)
{
    m_database.write([&, account = anna()](store::Connection &connection) {
        for (const char *name : {"gone", "gone lately"})
            store::createSet(connection, account, name, m_seconds);
        for (std::int64_t set = 1; set <= 3; ++set)
            for (int i = 1; i < 5; ++i)
                store::noteSetProgress(connection, account, set, m_seconds + i * day);
        store::deleteSet(connection, account, /*setId=*/2, /*now=*/100);
        store::deleteSet(connection, account, /*setId=*/3, /*now=*/200);
        EXPECT_EQ(store::purgeDeleted(connection, account, /*before=*/150, /*most=*/4), 4);
        EXPECT_EQ(store::purgeDeleted(connection, account, /*before=*/150, /*most=*/4), 2);
    });
    const auto other = anotherSession(m_folder);
    EXPECT_EQ(other->numberOf("SELECT COUNT(*) FROM goal_set WHERE set_id = 2"), 0);
    EXPECT_EQ(other->numberOf("SELECT COUNT(*) FROM set_progress WHERE set_id <> 2"), 10);
}

TEST_F(Progress, OfAYearTakesLittleRoom)
{
    if (testServer != nullptr)
        GTEST_SKIP() << "Its size is known only later.";
    m_database.write([&, account = anna()](store::Connection &connection) {
        for (const char *name : {"2", "3", "4"})
            store::createSet(connection, account, name, m_seconds);
        store::createGoals(connection, account, {{.setId = 1, .areaId = 1, .name = "x"}}, m_seconds);
        const std::int64_t before = connection.size();
        for (int i = 1; i < 365; ++i) {
            store::noteAreaProgress(connection, account, m_seconds + i * day);
            for (std::int64_t set = 1; set <= 4; ++set)
                store::noteSetProgress(connection, account, set, m_seconds + i * day);
        }
        EXPECT_LT(connection.size(), before + 200'000);
    });
}

TEST(ProgressOfOlderDatabases, BeginsWithWhatTheySet)
{
    const TemporaryFolder folder;
    const std::string url = databaseUrl(folder);
    if (testServer == nullptr)
        std::ofstream(folder.path() / "wheel.db").close();
    const auto session = anotherSession(folder);
    auto migrations = testServer == nullptr ? store::sqliteMigrations : store::postgresqlMigrations;
    migrations.resize(8);
    store::migrate(*session, migrations);
    session->execute("INSERT INTO account (account_id, name, password_hash, version, next_set_id,"
                     " next_goal_id, created_at) VALUES (7, 'Anna', 'hash', 1, 4, 8, 0);"
                     "UPDATE account_count SET accounts = 1");
    for (std::int64_t area = 1; area <= 8; ++area)
        session->change("INSERT INTO area VALUES (7, $1, 'x', '#1', $2)", area, -area);
    session->execute("INSERT INTO goal_set VALUES (7, 1, 'x', NULL), (7, 2, 'x', NULL), (7, 3, 'x', 9)");
    session->execute("INSERT INTO goal VALUES (7, 1, 1, 8, 'x', 5, 1, NULL), (7, 2, 1, 8, 'x', 5, 1, NULL),"
                     " (7, 3, 1, 8, 'x', 5, 0, NULL), (7, 4, 1, 8, 'x', 5, 0, 9)");
    const std::int64_t today = store::dayOf(std::time(nullptr));
    store::Database database(url);
    database.read([&](store::Connection &connection) {
        EXPECT_EQ(words(store::percentsOn(connection, 7, 1, today + 1).value().numbers),
                  "100 100 100 100 100 100 100 66");
        EXPECT_EQ(words(store::percentsOn(connection, 7, 2, today + 1).value().numbers),
                  "100 100 100 100 100 100 100 100");
        EXPECT_EQ(words(store::valuesOn(connection, 7, today + 1).value().numbers),
                  "-1 -2 -3 -4 -5 -6 -7 -8");
        EXPECT_FALSE(store::percentsOn(connection, 7, 1, today - 1));
    });
    EXPECT_EQ(session->numberOf("SELECT COUNT(*) FROM set_progress"), 2);
}
