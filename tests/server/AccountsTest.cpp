#include "AccountRemoval.h"
#include "ClosedAccounts.h"
#include "Customer.h"
#include "Exporting.h"
#include "Goals.h"
#include "Quotas.h"
#include "SampleRows.h"
#include "ServerProcess.h"
#include "ServiceFixture.h"
#include "Sets.h"
#include "Undeleting.h"
#include "WireText.h"

#include <atomic>
#include <csignal>
#include <fnmatch.h>
#include <fstream>
#include <pty.h>
#include <sys/wait.h>
#include <thread>

using namespace tarvex;

namespace {

constexpr std::int64_t day = 24LL * 60 * 60;

/// What an operator does with Anna's account while the service of the fixture runs.
struct Accounts : ServiceFixture
{
    store::AccountOverview overview() { return requests::overviewOf(m_database, anna()); }

    void createGoals(std::int64_t set, const std::vector<std::string> &names)
    {
        std::vector<store::Goal> goals;
        goals.reserve(names.size());
        for (const std::string &name : names)
            goals.push_back({.setId = set, .areaId = 3, .name = name});
        m_database.write(
            [&](store::Connection &connection) { store::createGoals(connection, anna(), goals, m_seconds); });
    }
    std::string namesOf(std::int64_t set)
    {
        return column(postAsAnna("get-complex-goals-for-sets", "&p4=" + std::to_string(set)), "name");
    }
    /// The sentence that the work is refused with.
    template<class Work>
    static std::string refusal(const Work &work)
    {
        try {
            work();
        } catch (const std::exception &error) {
            return error.what();
        }
        return "";
    }
    std::string undeleteRefusal(const std::vector<std::int64_t> &sets, const std::vector<std::int64_t> &goals)
    {
        return refusal([&] { requests::undelete(m_database, anna(), sets, goals, m_seconds); });
    }

    /// All that a client of the account sees, but for the ids of goals.
    std::string wheelOf(const std::string &login)
    {
        const std::string who = credentials(login, m_password);
        std::string seen = post("p1=get-sets" + who) + post("p1=get-areas" + who);
        for (int set = 1; set <= 3; ++set) {
            const std::string goals =
                post("p1=get-complex-goals-for-sets" + who + "&p4=" + std::to_string(set));
            for (const char *name : {"name", "area", "priority", "checked"})
                seen += column(goals, name);
        }
        return seen;
    }
};

/// What a command that ends by itself says and, unless that is 0, its exit code.
std::string said(const TemporaryFolder &folder, const std::string &arguments, const std::string &input = "")
{
    std::ofstream(folder.path() / "input") << input;
    std::ofstream(folder.path() / "with-input.sh") << "\"$@\" < input";
    const auto [code, text] = run(folder, arguments + " --secret secret --database " + databaseUrl(folder),
                                  "/bin/sh with-input.sh ");
    return text + (code == 0 ? "" : std::to_string(code));
}

/// What a terminal shows while somebody answers the command's questions.
std::string shownWhileTyping(const std::string &command, const std::vector<std::string> &answers)
{
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0)
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    std::string shown;
    auto next = answers.begin();
    for (char byte = 0; ::read(terminal, &byte, 1) == 1;) {
        shown += byte;
        if (next != answers.end() && shown.ends_with(": ")) {
            EXPECT_EQ(::write(terminal, next->data(), next->size()), static_cast<ssize_t>(next->size()));
            ++next;
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(terminal);
    return shown;
}

} // namespace

TEST_F(Accounts, NotesOnceADayThatTheirPasswordWasFoundRight)
{
    post("p1=sign-in" + credentials(m_login, "wrong"));
    EXPECT_EQ(overview().seenOn, 0);
    const auto other = anotherSession(m_folder);
    const auto version = [&] { // of the account's row, or of all there is
        return other->numberOf(testServer == nullptr ? "PRAGMA data_version"
                                                     : "SELECT xmin::text FROM account");
    };
    for (const std::string kind : {"sign-in", "get-areas", "set-area-value"}) { // hashed, remembered, written
        m_seconds += day;
        postAsAnna(kind, "&p4=1&p5=7");
        awaitWrites();
        EXPECT_EQ(overview().seenOn, m_seconds / day) << kind;
        const std::int64_t before = version();
        for (int again = 0; again < 3; ++again)
            postAsAnna("get-areas");
        awaitWrites();
        EXPECT_EQ(version(), before) << kind;
    }
}

TEST_F(Accounts, AreRefusedWhileDisabledAsIfThePasswordWereWrong)
{
    const std::string sets = postAsAnna("get-sets");
    const std::string wrong = post("p1=sign-in" + credentials(m_login, "wrong"));
    requests::setDisabled(m_database, anna(), /*isDisabled=*/true);
    EXPECT_EQ(postAsAnna("get-sets"), "Error");
    EXPECT_EQ(postAsAnna("sign-in"), wrong);
    EXPECT_EQ(postAsAnna("create-sets", "&p4=Name"), "Error");
    EXPECT_NE(signUp(m_login, m_password, "Anna"), R"({"result":"OK"})");
    requests::setDisabled(m_database, anna(), /*isDisabled=*/false);
    EXPECT_EQ(postAsAnna("get-sets"), sets);
}

TEST_F(Accounts, KeepTheirPasswordWhereTheNewOneIsRefused)
{
    EXPECT_EQ(refusal([&] { requests::setPassword(m_database, anna(), std::string(65'537, 'x')); }),
              "The password is too long.");
    EXPECT_EQ(refusal([&] { requests::setPassword(m_database, 7, "x"); }), "There is no account 7.");
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
}

TEST_F(Accounts, LeaveNothingBehindWhenRemoved)
{
    signUp("berta@example.org", m_password, "Berta");
    const std::string berta = wheelOf("berta@example.org");
    const std::string mark = "Unmistakable";
    for (int set = 2; set <= 4; ++set) {
        postAsAnna("create-sets", "&p4=" + mark);
        createGoals(set, std::vector<std::string>(600, mark + std::to_string(set)));
        createGoals(set, std::vector<std::string>(5, mark + std::string(20'000, 'x')));
    }
    postAsAnna("delete-sets", "&p4=3");
    const std::int64_t account = anna();
    // As if it had been interrupted.
    m_database.write([&](store::Connection &connection) { store::freeLogins(connection, account); });
    EXPECT_EQ(postAsAnna("get-sets"), "Error");
    EXPECT_TRUE(requests::removeAccount(m_database, account));

    for (const std::string table :
         {"account", "login", "area", "goal_set", "goal", "set_progress", "area_progress"})
        EXPECT_EQ(
            numberOf("SELECT COUNT(*) FROM " + table + " WHERE account_id = " + std::to_string(account)), 0);
    EXPECT_EQ(numberOf("SELECT accounts FROM account_count"), 1);
    for (const char *file : {"wheel.db", "wheel.db-wal"}) // neither of which PostgreSQL has
        EXPECT_EQ(contentOf(m_folder.path() / file).find(mark), std::string::npos) << file;
    EXPECT_EQ(wheelOf("berta@example.org"), berta);
    EXPECT_EQ(signUp(m_login, m_password, "Anna"), R"({"result":"OK"})");
}

TEST_F(Accounts, HoldUpNobodyWhileOneIsRemoved)
{
    signUp("berta@example.org", m_password, "Berta");
    const std::int64_t berta = requests::accountOfLogin(m_database, m_hash, "berta@example.org");
    createGoals(/*set=*/1, std::vector<std::string>(5'000, "x"));
    const std::int64_t account = anna();
    std::atomic<bool> isRemoved = false;
    std::thread removal([&] {
        store::Database another(databaseUrl(m_folder)); // which waits for the file like any process
        requests::removeAccount(another, account);
        isRemoved = true;
    });
    int between = 0; // writes that came between two steps
    while (!isRemoved) {
        std::int64_t left = 0;
        m_database.write([&](store::Connection &connection) {
            store::countChange(connection, berta);
            left = store::findOverview(connection, account).value_or(store::AccountOverview()).goals;
        });
        if (left > 0 && left < 5'000)
            ++between;
    }
    removal.join();
    EXPECT_GT(between, 3);
}

TEST_F(Accounts, GetBackWhatTheyDeletedAndNothingElse)
{
    createGoals(/*set=*/1, {"kept", "gone"});
    postAsAnna("create-sets", "&p4=Old");
    createGoals(/*set=*/2, {"with the set", "before it"});
    postAsAnna("delete-some-goals", "&p4=2;4;");
    m_seconds += 5;
    postAsAnna("delete-sets", "&p4=2");
    const std::string before = postAsAnna("get-sets");
    const auto found = requests::undeletable(m_database, anna());
    ASSERT_EQ(found.sets.size(), 1U);
    EXPECT_EQ(found.sets[0].name + " " + std::to_string(found.sets[0].goals), "Old 1");
    ASSERT_EQ(found.goals.size(), 2U);
    EXPECT_FALSE(found.goals[0].isSetDeleted);
    EXPECT_TRUE(found.goals[1].isSetDeleted);
    EXPECT_EQ(found.goals[0].name + " of " + found.setNames.at(found.goals[0].setId) + ", " +
                  found.areaNames.at(found.goals[0].areaId),
              "gone of My wheel, Finance");

    const auto nothing = [](const std::string &what) {
        return "There is no deleted " + what + " that could come back; nothing did.";
    };
    EXPECT_EQ(undeleteRefusal({}, {2, 4}), nothing("goal 4")); // for want of its set
    EXPECT_EQ(undeleteRefusal({2}, {1}), nothing("goal 1"));
    EXPECT_EQ(undeleteRefusal({1}, {}), nothing("set 1"));
    EXPECT_EQ(postAsAnna("get-sets"), before);
    EXPECT_EQ(requests::undelete(m_database, anna(), {2}, {2}, m_seconds), 2);
    EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[My wheel][Old]");
    EXPECT_EQ(namesOf(1) + namesOf(2), "[kept][gone][with the set]");
    EXPECT_EQ(requests::undelete(m_database, anna(), {}, {4}, m_seconds), 1);
    EXPECT_EQ(namesOf(2), "[with the set][before it]");
}

TEST_F(Accounts, ThatWereClosedAreToldOfAndEnabledAgain)
{
    m_database.write(
        [&](store::Connection &connection) { store::closeAccount(connection, anna(), m_seconds); });
    EXPECT_NE(postAsAnna("sign-in"), "OK");
    EXPECT_EQ(overview().closedAt, m_seconds);
    requests::setDisabled(m_database, anna(), /*isDisabled=*/false);
    EXPECT_EQ(overview().closedAt, 0);
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
}

TEST_F(Accounts, GetBackNoMoreThanTheyMayHold)
{
    const std::string tooMuch = "The account would hold more than it may; nothing came back.";
    const auto many = static_cast<std::size_t>(store::Quotas::goals);
    postAsAnna("create-sets", "&p4=Old");
    createGoals(/*set=*/2, {"first", "second"});
    postAsAnna("delete-sets", "&p4=2");
    createGoals(/*set=*/1, std::vector<std::string>(many, "x"));
    EXPECT_EQ(undeleteRefusal({2}, {}), tooMuch);
    EXPECT_EQ(undeleteRefusal({}, {1}), "There is no deleted goal 1 that could come back; nothing did.");
    postAsAnna("delete-some-goals", "&p4=3;4;");
    EXPECT_EQ(undeleteRefusal({2}, {}), "");
    EXPECT_EQ(overview().goals, store::Quotas::goals);
    EXPECT_EQ(undeleteRefusal({}, {3}), tooMuch);
    EXPECT_EQ(postAsAnna("create-goal", "&p4=x&p5=5&p6=0&p7=1&p8=1"), "Error");

    postAsAnna("delete-sets", "&p4=2");
    m_database.write([&](store::Connection &connection) {
        for (std::int64_t set = 1; set < store::Quotas::sets; ++set)
            store::createSet(connection, anna(), "x", m_seconds);
    });
    EXPECT_EQ(undeleteRefusal({2}, {}), tooMuch);
}

TEST_F(Accounts, AreTheSameWheelAfterExportAndImport)
{
    std::string typed;
    for (char character = ' '; character < 0x7F; ++character)
        typed += character;
    typed += "\t\r\n\"\\ é 目標 🎯 {_quest {_d";
    EXPECT_EQ(wire::unescaped(wire::escaped(typed)), typed);
    EXPECT_EQ(wire::escaped("a.b?[~]"), "a{_d_}b{_quest_}{_cbo_}{_-_}{_cbc_}");
    postAsAnna("set-area-names", "&p4=id:2;name:" + wire::escaped(typed) + ";{_end_}");
    postAsAnna("set-area-value", "&p4=2&p5=9");
    for (const char *set : {"Older", "Old"})
        postAsAnna("create-sets", "&p4=" + std::string(set) + wire::escaped(typed));
    createGoals(/*set=*/3, {wire::escaped(typed), "gone", "last"});
    postAsAnna("create-goal", "&p4=Done&p5=-9&p6=1&p7=3&p8=8");
    postAsAnna("delete-goal", "&p4=2");
    postAsAnna("create-sets", "&p4=gone");
    postAsAnna("delete-sets", "&p4=4");

    for (const bool withDeleted : {false, true}) {
        const std::string text = wire::writeExport(requests::exportAccount(m_database, anna(), withDeleted));
        EXPECT_EQ(text.find("\"gone\"") != std::string::npos, withDeleted);
        const std::string login = withDeleted ? "berta@example.org" : "carla@example.org";
        requests::createImported(m_database, m_hash, {.login = login, .password = m_password, .name = "B"},
                                 m_seconds, wire::readExport(text));
        EXPECT_EQ(wheelOf(login), wheelOf(m_login));
    }
    const auto exported = requests::exportAccount(m_database, anna(), /*withDeleted=*/false);
    requests::importAccount(m_database, anna(), exported, m_seconds);
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "[1][7][6][5][3][2]");
    EXPECT_EQ(namesOf(7), namesOf(3));
}

TEST_F(Accounts, TakeNothingOfAnExportThatIsNotInOrder)
{
    const std::string before = wheelOf(m_login);
    for (const SampleRow &row : sampleRows("refused-imports.txt"))
        EXPECT_EQ(refusal([&] {
                      requests::importAccount(m_database, anna(), wire::readExport(row[0]), m_seconds);
                  }),
                  row[1])
            << row[0].substr(0, 200);
    std::vector<std::string> sets(501, R"({"name": "x", "goals": []})");
    const std::string many =
        R"({"format": "tarvex-account", "version": 1, "name": "A", "areas": [], "sets": [)" +
        boost::algorithm::join(sets, ",") + "]}";
    EXPECT_NE(refusal([&] {
                  requests::importAccount(m_database, anna(), wire::readExport(many), m_seconds);
              }).find("500"),
              std::string::npos);
    EXPECT_EQ(wheelOf(m_login), before);
}

TEST(AccountTable, HoldsNothingThatASpreadsheetWouldCompute)
{
    wire::AccountExport account{.name = "Anna", .areas = {{.name = "=1+1"}}, .sets = {}};
    account.sets.push_back({.name = "Empty, \"as yet\"", .deletedAt = 0});
    account.sets.push_back(
        {.name = "＝x", .goals = {{.area = 1, .name = "-2\r\n", .priority = -9, .isDone = true}}});
    EXPECT_EQ(wire::writeTable(account), "set,area,goal,priority,done,deleted\r\n"
                                         "\"Empty, \"\"as yet\"\"\",,,,,1970-01-01T00:00:00Z\r\n"
                                         "\"'＝x\",\"'=1+1\",\"'-2\r\n\",-9,yes,\r\n");
    account.areas[0].name.resize(wire::largestTable / 1'000);
    account.sets[1].goals.resize(1'000, account.sets[1].goals[0]);
    EXPECT_FALSE(wire::writeTable(account));
}

TEST(AccountCommands, WorkOnADatabaseThatAServerHasOpen)
{
    const TemporaryFolder folder;
    if (testServer == nullptr) {
        EXPECT_EQ(said(folder, "accounts"),
                  "tarvex-server: There is no database " + (folder.path() / "wheel.db").string() + ".\n1");
    }
    ServerProcess server(folder,
                         "serve --listen 127.0.0.1:0 --secret secret --database " + databaseUrl(folder));
    RawClient client(server.port());
    std::ofstream(folder.path() / "new") << "newer\r\n";
    for (const SampleRow &row : sampleRows("account-commands.txt")) {
        const std::string told = row[0] == "operator"
                                     ? said(folder, row[1], /*input=*/row[2])
                                     : client.post(Customer::request(row[1], "", /*password=*/row[2])).body();
        EXPECT_EQ(::fnmatch(row[3].c_str(), told.c_str(), FNM_NOESCAPE), 0) << row[1] << ": " << told;
    }
    EXPECT_EQ(said(folder, "export --login b@example.org"), contentOf(folder.path() / "b.json"));
    EXPECT_EQ(server.ended(SIGTERM).first, 0);
}

TEST(AccountCommands, ShowNoPasswordThatIsTyped)
{
    const TemporaryFolder folder;
    const std::string command = "cd " + folder.path().string() +
                                " && " TARVEX_SERVER_BINARY
                                " create-account --database sqlite:wheel.db --name A --login a@example.org";
    EXPECT_EQ(shownWhileTyping(command, {"secret\n", "secrets\n"}),
              "New password: \r\nThe same again: \r\ntarvex-server: The passwords differ.\r\n");
    EXPECT_EQ(shownWhileTyping(command, {"\x03"}),
              "New password: \r\ntarvex-server: No password was typed.\r\n");
    EXPECT_NE(shownWhileTyping(command, {"secret\n", "secret\n"}).find(" was made."), std::string::npos);
}
