#include "Customer.h"
#include "Database.h"
#include "Integrity.h"
#include "ServerProcess.h"
#include "SqliteConnection.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace tarvex;
namespace fs = std::filesystem;

namespace {

struct Copies : testing::Test
{
    std::int64_t number(const std::string &query, const std::string &file = "wheel.db") const
    {
        return store::SqliteConnection(at(file)).numberOf(query);
    }
    void change(const std::string &script, const std::string &file = "wheel.db") const
    {
        store::SqliteConnection(at(file)).execute(script);
    }
    fs::path at(const std::string &name) const { return folder.path() / name; }
    std::set<std::string> names(const std::string &subfolder = "") const
    {
        std::set<std::string> found;
        for (const auto &entry : fs::directory_iterator(at(subfolder)))
            found.insert(entry.path().filename());
        return found;
    }
    void makeSampleAndCopy() const
    {
        run(folder, "sample" + here);
        run(folder, "backup copy.db" + here);
    }
    void refuses(const std::string &command, const std::string &reason) const
    {
        const std::set<std::string> before = names();
        EXPECT_EQ(run(folder, command + here), Said(1, "tarvex-server: " + reason + "\n"));
        EXPECT_EQ(names(), before);
    }

    const TemporaryFolder folder;
};

void copyOver(const fs::path &from, const fs::path &target)
{
    fs::copy_file(from, target, fs::copy_options::overwrite_existing);
}

} // namespace

TEST_F(Copies, AreOfOneMomentAndHoldNobodyUp)
{
    constexpr int goalsASave = 20;
    ServerProcess server(folder, serveHere);
    const std::uint16_t port = server.port();
    Customer customer(port);
    for (int i = 0; i < 12; ++i)
        customer.saveLargeGoals(goalsASave);
    std::atomic<bool> isOver = false;
    std::chrono::steady_clock::duration longest{};
    int saved = 0;
    std::thread saver([&] {
        for (; !isOver; ++saved) {
            const auto begin = std::chrono::steady_clock::now();
            const auto answer = customer.post("set-area-value", "&p4=1&p5=" + std::to_string(saved % 10));
            EXPECT_EQ(answer.body(), "OK");
            customer.post("create-some-goals", "&p4=name:a;priority:5;checked:0;setsId:1;areaId:3;{_end_}"
                                               "name:b;priority:5;checked:0;setsId:1;areaId:3;{_end_}");
            longest = std::max(longest, std::chrono::steady_clock::now() - begin);
        }
    });
    const auto [exitCode, said] = run(folder, "backup copy.db" + here);
    isOver = true;
    saver.join();
    EXPECT_EQ(exitCode, 0) << said;
    EXPECT_GT(saved, 2);
    EXPECT_LT(longest, std::chrono::seconds(5));
    server.ended(SIGTERM);
    EXPECT_EQ(number("SELECT COUNT(*) % 2 FROM goal", "copy.db"), 0);
    EXPECT_LT(number("SELECT COUNT(*) FROM goal", "copy.db"), number("SELECT COUNT(*) FROM goal"));
    for (const char *file : {"copy.db", "copy.db.secret"})
        EXPECT_EQ(fs::status(at(file)).permissions(), fs::perms(0600)) << file;
    EXPECT_FALSE(names().contains("copy.db-wal") || names().contains("copy.db.part"));

    EXPECT_EQ(run(folder, "restore copy.db --database sqlite:other/wheel.db").first, 1); // no such folder
    fs::create_directory(at("other"));
    EXPECT_EQ(run(folder, "restore copy.db --database sqlite:other/wheel.db"),
              Said(0, "Accounts restored: 1.\nThe secret was missing, and is that of the copy now.\n"));
    ServerProcess restored(folder, "serve --listen 127.0.0.1:0 --database sqlite:other/wheel.db");
    EXPECT_EQ(Customer(restored.port()).post("sign-in").body(), "OK");
}

TEST_F(Copies, InAFolderGoWhenThereAreNewerOnes)
{
    run(folder, "sample" + here);
    fs::create_directory(at("copies"));
    run(folder, "backup first.db" + here);
    const std::set<std::string> foreign = {"wheel-20200101-000000.db.txt", "wheel-20200101-00000.db",
                                           "other-20200101-000000.db", "wheel-20190101-000000.db"};
    for (const std::string name : {"wheel-20200101-000000.db", "wheel-20210101-000000.db",
                                   "wheel-20220101-000000.db", "other-20200101-000000.db"})
        fs::copy_file(at("first.db"), at("copies/" + name));
    for (const std::string &name : foreign)
        std::ofstream(at("copies/" + name), std::ios::app).close();
    change("PRAGMA application_id = 7; CREATE TABLE notes (id INTEGER)", "copies/wheel-20190101-000000.db");
    std::ofstream(at("copies/wheel-20200101-000000.db.secret")) << "x";

    EXPECT_EQ(run(folder, "backup copies --keep 2" + here).first, 0);
    std::set<std::string> left = names("copies");
    for (const std::string &name : foreign)
        EXPECT_EQ(left.erase(name), 1U) << name;
    EXPECT_EQ(left.size(), 3U); // with the secret of the newest
    EXPECT_TRUE(left.contains("wheel-20220101-000000.db"));
}

TEST_F(Copies, LeaveWhatWasThereWhenTheDiskIsFull)
{
    run(folder, "sample" + here);
    const std::string script = "mkdir small; mount -t tmpfs -o size=64k none small; echo old >small/kept\n"
                               "\"$@\"; code=$?; ls -A small; cat small/kept; exit $code";
    EXPECT_EQ(run(folder, "backup small/copy.db" + here, behind(folder, script)),
              Said(1, "kept\nold\ntarvex-server: The copy small/copy.db cannot be made: database or disk is"
                      " full.\n"));
}

TEST_F(Copies, NeverReplaceWhatIsNoCopy)
{
    run(folder, "sample" + here);
    run(folder, "sample --database sqlite:other.db");
    std::ofstream(at("letter.txt")) << "Dear Anna,\n";
    refuses("backup letter.txt", "The file letter.txt is there, and no copy of a database.");
    refuses("backup other.db", "The file other.db is no copy but a database that is used.");
    refuses("backup ./wheel.db", "The file ./wheel.db is no copy but a database that is used.");
    refuses("backup copy.db --keep 2", "Old copies can be removed from a folder only, and copy.db is none.");
}

TEST_F(Copies, AreNotRestoredWhileAnybodyUsesTheDatabase)
{
    makeSampleAndCopy();
    {
        ServerProcess server(folder, serveHere);
        server.port();
        refuses("restore copy.db", "The database wheel.db is in use by another process; stop that first.");
        refuses("compact", "The database wheel.db is in use by another process; stop that first.");
        server.ended(SIGKILL);
    }
    {
        store::SqliteConnection other(at("wheel.db"));
        other.useLog();
        other.numberOf("SELECT COUNT(*) FROM account");
        refuses("restore copy.db", "Another program uses the database wheel.db; end that first.");
    }
    EXPECT_EQ(run(folder, "restore copy.db" + here).first, 0);
}

TEST_F(Copies, AreRestoredOnlyWholeAndWithTheirSecret)
{
    makeSampleAndCopy();
    copyOver(at("copy.db"), at("cut.db"));
    fs::resize_file(at("cut.db"), fs::file_size(at("cut.db")) - 8192);
    refuses("restore cut.db", "The copy cut.db cannot be restored. The database cut.db cannot be"
                              " used: database disk image is malformed.");
    copyOver(at("copy.db"), at("newer.db"));
    change("UPDATE schema_version SET version = 99", "newer.db");
    EXPECT_NE(run(folder, "restore newer.db" + here).second.find("made by a newer tarvex-server"),
              std::string::npos);
    copyOver(at("copy.db"), at("orphans.db"));
    change("PRAGMA foreign_keys = OFF; DELETE FROM area WHERE area_id = 3", "orphans.db");
    refuses("restore orphans.db", "The copy orphans.db is not whole. Rows of the table goal whose row in the"
                                  " table area is missing: 11.");
    run(folder, "sample --database sqlite:other.db");
    refuses("restore other.db", "The secret wheel.db.secret is not that of the copy: nobody could sign in. To"
                                " have the one beside the copy taken, move this one away.");
}

TEST_F(Copies, TakeThePlaceOfADamagedDatabaseThatIsKeptAsItIs)
{
    makeSampleAndCopy();
    const std::string garbage(20'000, 'x');
    std::ofstream(at("wheel.db")) << garbage;
    std::ofstream(at("wheel.db-wal")) << garbage;
    if (::geteuid() == 0) {
        EXPECT_EQ(::chown(at("wheel.db").c_str(), 4711, 4711), 0);
    }
    fs::remove(at("wheel.db.secret"));
    const auto [exitCode, said] = run(folder, "restore copy.db" + here);
    EXPECT_EQ(exitCode, 0) << said;
    EXPECT_EQ(run(folder, "check" + here).first, 0);
    EXPECT_EQ(number("SELECT next_goal_id FROM account"), 1'000'088);
    const std::string kept = said.substr(said.find("wheel.db.before-restore-"), 39);
    for (const char *suffix : {"", "-wal"})
        EXPECT_EQ(fs::file_size(at(kept + suffix)), garbage.size()) << suffix;
    struct stat before = {};
    EXPECT_EQ(::stat(at(kept).c_str(), &before), 0);
    for (const char *file : {"wheel.db", "wheel.db.secret"}) {
        struct stat owned = {};
        EXPECT_EQ(::stat(at(file).c_str(), &owned), 0);
        EXPECT_EQ(owned.st_uid, before.st_uid) << file;
    }
}

TEST_F(Copies, TakeThePlaceOfALostDatabaseOfWhichNothingThatIsLeftIsThrownAway)
{
    makeSampleAndCopy();
    {
        store::SqliteConnection session(at("wheel.db"));
        session.useLog();
        session.execute("UPDATE goal_set SET name = 'stale'");
        copyOver(at("wheel.db-wal"), at("stale"));
    }
    fs::remove(at("wheel.db"));
    fs::rename(at("stale"), at("wheel.db-wal"));
    refuses("sample",
            "The database wheel.db is missing, but its secret is there: wheel.db.secret. Put the file back or"
            " restore a copy, or move the secret away.");
    EXPECT_THROW(store::Database("sqlite:" + at("wheel.db").string()), store::CannotOpen); // with any secret
    const std::uintmax_t logged = fs::file_size(at("wheel.db-wal"));
    const auto [exitCode, said] = run(folder, "restore copy.db" + here);
    EXPECT_EQ(exitCode, 0);
    run(folder, "invite" + here); // which opens it with a log
    EXPECT_EQ(number("SELECT COUNT(*) FROM goal_set WHERE name = 'stale'"), 0);
    const std::string kept = said.substr(said.find("kept as ") + 8);
    EXPECT_EQ(fs::file_size(at(kept.substr(0, kept.rfind('.')))), logged);
}

TEST_F(Copies, AreNotRestoredToAFullDisk)
{
    makeSampleAndCopy();
    const std::string script = "mkdir small; mount -t tmpfs -o size=160k none small; cp wheel.db* small\n"
                               "\"$@\"; code=$?; ls -A small; cmp wheel.db small/wheel.db; exit $code";
    EXPECT_EQ(run(folder, "restore copy.db --database sqlite:small/wheel.db", behind(folder, script)),
              Said(1, "wheel.db\nwheel.db.lock\nwheel.db.secret\ntarvex-server: The file"
                      " small/wheel.db.restoring cannot be written: No space left on device.\n"));
}

TEST_F(Copies, GiveNoIdAgainThatAClientMayKnow)
{
    run(folder, "sample" + here);
    change(
        "INSERT INTO account SELECT 5, name, password_hash, 1, 2147483600, 9, 0, 0, 0, 0, 0, 0, 0, NULL FROM "
        "account");
    change("UPDATE account_count SET accounts = 2");
    run(folder, "backup copy.db" + here);
    change("DELETE FROM account WHERE account_id = 5; UPDATE account_count SET accounts = 1;"
           "UPDATE account SET next_set_id = 40, next_goal_id = 5000, version = 7, changes = 70");
    const auto [exitCode, said] = run(folder, "restore copy.db --json" + here);
    EXPECT_EQ(exitCode, 0) << said;
    EXPECT_EQ(number("SELECT COUNT(*) FROM account WHERE account_id <> 5 AND next_set_id = 40"
                     " AND next_goal_id = 5000 AND version > 7 AND changes > 70"),
              1);
    EXPECT_EQ(number("SELECT COUNT(*) FROM account WHERE account_id = 5 AND next_set_id > 2147483600"
                     " AND next_set_id < 2147483647 AND next_goal_id = 1000009"),
              1);
    const std::string kept = said.substr(said.find("wheel.db.before-restore-"), 39);
    EXPECT_EQ(number("SELECT COUNT(*) FROM account WHERE version = 7", kept), 1) << said;
}

TEST_F(Copies, LeaveTheOldDatabaseOrTheNewWheneverARestoreIsKilled)
{
    constexpr int kills = 16;
    run(folder, "sample" + here);
    change("WITH RECURSIVE n (i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 20000)"
           " INSERT INTO goal SELECT account_id, i, 1, 3, 'goal', 5, 0, NULL FROM account, n;"
           "UPDATE goal_set SET name = 'copied'");
    run(folder, "backup copy.db" + here);
    change("UPDATE goal_set SET name = 'before'");
    { // the last change is in the log alone, as a server leaves it that was killed
        store::SqliteConnection session(at("wheel.db"));
        session.useLog();
        session.execute("UPDATE goal_set SET name = 'changed'; UPDATE account SET version = 50");
        copyOver(at("wheel.db"), at("old"));
        copyOver(at("wheel.db-wal"), at("old-wal"));
    }
    const auto restoring = [&](auto until) {
        fs::remove(at("wheel.db-shm"));
        copyOver(at("old"), at("wheel.db"));
        copyOver(at("old-wal"), at("wheel.db-wal"));
        const auto begin = std::chrono::steady_clock::now();
        ServerProcess restore(folder, "restore copy.db" + here);
        until(restore);
        return std::chrono::steady_clock::now() - begin;
    };
    const auto whole = restoring([](ServerProcess &restore) { EXPECT_EQ(restore.ended().first, 0); });
    const auto countKept = [this] {
        const std::set<std::string> all = names();
        return std::distance(all.lower_bound("wheel.db.before-"), all.lower_bound("wheel.db.c"));
    };
    std::set<std::string> seen;
    for (int i = 0; i <= kills; ++i) {
        const auto before = countKept();
        restoring([&](ServerProcess &restore) {
            const auto begin = std::chrono::steady_clock::now();
            const bool isLate = i % 4 == 3; // once the old database has its other name
            while (restore.child.running() &&
                   (isLate ? countKept() == before
                           : std::chrono::steady_clock::now() < begin + whole * i / kills))
                std::this_thread::yield();
            restore.ended(i < kills ? SIGKILL : 0);
        });
        store::SqliteConnection left(at("wheel.db"));
        EXPECT_EQ(store::damages(left), std::vector<std::string>());
        store::Rows row = left.rows("SELECT DISTINCT goal_set.name, version FROM goal_set, account");
        ASSERT_TRUE(row.next());
        const std::string name(row.text(0));
        EXPECT_EQ(row.number(1), name == "copied" ? 51 : 50) << name;
        EXPECT_FALSE(row.next());
        seen.insert(name);
    }
    EXPECT_EQ(seen, (std::set<std::string>{"changed", "copied"}));
}
