#include "Customer.h"
#include "SampleRows.h"
#include "Schema.h"
#include "ServerProcess.h"
#include "SqliteConnection.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace tarvex;
namespace fs = std::filesystem;

namespace {

/// A database as a server left it that knew so many migrations, with one account.
void makeOld(const TemporaryFolder &folder, std::size_t migrations)
{
    std::ofstream(folder.path() / "wheel.db").close();
    store::SqliteConnection session(folder.path() / "wheel.db");
    store::migrate(session, {store::sqliteMigrations.begin(),
                             store::sqliteMigrations.begin() + static_cast<std::ptrdiff_t>(migrations)});
    session.execute("INSERT INTO account VALUES (4711, '" + std::string(300'000, 'x') +
                    "', 'hash', 1, 1, 1, 0)");
}

std::string newestCopy()
{
    return "wheel.db.before-schema-" + std::to_string(store::sqliteMigrations.size());
}

} // namespace

TEST(Maintenance, FindsWhatIsWrongAndRepairsCountsAlone)
{
    const TemporaryFolder folder;
    run(folder, "sample" + here);
    ServerProcess server(folder, serveHere);
    server.port();
    const std::string fine = "Nothing is wrong with the database.\n";
    EXPECT_EQ(run(folder, "check" + here), Said(0, fine));
    for (const SampleRow &row : sampleRows("database-faults.txt")) {
        const auto &[spoil, told, repaired, mend] = std::tie(row[0], row[1], row[2], row[3]);
        store::SqliteConnection(folder.path() / "wheel.db").execute("PRAGMA foreign_keys = OFF;" + spoil);
        EXPECT_EQ(run(folder, "check" + here), Said(1, told + "\n")) << spoil;
        const std::string counts = "Counts that were put right: 1.\n";
        EXPECT_EQ(run(folder, "check --repair" + here),
                  repaired == "repaired" ? Said(0, counts + fine) : Said(1, told + "\n"));
        store::SqliteConnection(folder.path() / "wheel.db").execute(mend);
        EXPECT_EQ(run(folder, "check" + here), Said(0, fine)) << mend;
    }
    server.ended(SIGTERM);
    std::fstream(folder.path() / "wheel.db", std::ios::in | std::ios::out).seekp(std::streamoff(4096) * 3)
        << std::string(4096, 'x');
    const auto [exitCode, said] = run(folder, "check" + here);
    EXPECT_EQ(exitCode, 1);
    EXPECT_TRUE(said.starts_with("The file is damaged: ")) << said;
}

TEST(Maintenance, GivesFreedRoomBackToTheDisk)
{
    const TemporaryFolder folder;
    ServerProcess server(folder, serveHere);
    Customer(server.port()).saveLargeGoals(20);
    server.ended(SIGTERM);
    const std::string disk = behind(folder, "mkdir small; mount -t tmpfs -o size=3m none small;"
                                            "cp wheel.db small; exec \"$@\"");
    EXPECT_EQ(run(folder, "compact --database sqlite:small/wheel.db", disk),
              Said(1, "tarvex-server: There is no room to compact the database: that takes 4 MiB meanwhile,"
                      " and the disk has 1 MiB.\n"));
    store::SqliteConnection(folder.path() / "wheel.db").execute("DELETE FROM goal");
    EXPECT_EQ(run(folder, "compact" + here), Said(0, "Freed 1.2 MiB.\n"));
    EXPECT_LT(fs::file_size(folder.path() / "wheel.db"), 200'000U);
    EXPECT_EQ(run(folder, "check" + here).first, 0);
}

TEST(Maintenance, CopiesADatabaseBeforeItsSchemaChanges)
{
    const TemporaryFolder folder;
    makeOld(folder, /*migrations=*/1);
    EXPECT_EQ(run(folder, "check" + here).first, 0);
    EXPECT_EQ(run(folder, "invite" + here).first, 0);
    store::SqliteConnection copy(folder.path() / newestCopy());
    EXPECT_EQ(copy.numberOf("SELECT version FROM schema_version"), 1);
    EXPECT_EQ(copy.numberOf("SELECT account_id FROM account"), 4711);
    store::SqliteConnection migrated(folder.path() / "wheel.db");
    EXPECT_EQ(migrated.numberOf("SELECT accounts FROM account_count"), 1);

    const TemporaryFolder fresh;
    run(fresh, "invite" + here);
    EXPECT_FALSE(fs::exists(fresh.path() / newestCopy()));
}

TEST(Maintenance, ChangesNoSchemaWithoutACopyUnlessToldTo)
{
    const TemporaryFolder folder;
    makeOld(folder, /*migrations=*/1);
    const std::string script = "mkdir -p small; mount -t tmpfs -o size=500k none small; cp wheel.db small";
    const std::string serve = "serve --listen 127.0.0.1:0 --keep-free 0 --database sqlite:small/wheel.db";
    EXPECT_EQ(
        run(folder, serve, behind(folder, script + "; \"$@\"; code=$?; cp small/wheel.db .; exit $code")),
        Said(1, "tarvex-server: The database small/wheel.db needs a newer schema, and no copy of it can"
                " be kept first. The copy small/" +
                    newestCopy() +
                    " cannot be made: database or disk is full. To go on without one, start serve with"
                    " --migrate-without-copy.\n"));
    const std::string version = "SELECT version FROM schema_version";
    EXPECT_EQ(store::SqliteConnection(folder.path() / "wheel.db").numberOf(version), 1);
    ServerProcess server(folder, "serve --listen 127.0.0.1:0 --migrate-without-copy" + here);
    server.port();
    EXPECT_FALSE(fs::exists(folder.path() / newestCopy()));
}

TEST(Maintenance, PutsNoSampleAccountBesideOthersUnasked)
{
    const TemporaryFolder folder;
    {
        ServerProcess server(folder, serveHere);
        Customer customer(server.port());
    }
    EXPECT_EQ(
        run(folder, "sample" + here),
        Said(1, "tarvex-server: There are other accounts in the database, and anybody knows the password of"
                " the sample account. To make it all the same, add --force.\n"));
    EXPECT_EQ(run(folder, "sample --force" + here).first, 0);
}

TEST(Settings, OfTheCommandLineGoBeforeTheEnvironmentAndThatBeforeTheFile)
{
    const TemporaryFolder folder;
    std::ofstream(folder.path() / "dump.conf").close();
    for (const SampleRow &row : sampleRows("settings.txt")) {
        std::ofstream(folder.path() / "a.conf") << "database = sqlite:wheel.db\n" << row[0] << "\n";
        const auto [exitCode, said] =
            run(folder, "config-dump --config a.conf " + row[2], "/usr/bin/env " + row[1] + " ");
        EXPECT_NE(said.find(row[3] + "\n"), std::string::npos) << said;
        if (exitCode != 0)
            continue;
        std::ofstream(folder.path() / "dump.conf") << said; // which says the same in turn
        const auto values = [](const std::string &text) {
            return boost::regex_replace(text, boost::regex("^#.*?$\n"), "");
        };
        EXPECT_EQ(values(run(folder, "config-dump", "/usr/bin/env TARVEX_CONFIG=dump.conf ").second),
                  values(said));
    }
}
