// What goes wrong around the service: memory, files, other programs.

#include "HttpFixture.h"
#include "PasswordHash.h"
#include "SqliteConnection.h"

#include <atomic>
#include <boost/algorithm/string/join.hpp>
#include <cstdlib>
#include <fstream>
#include <future>
#include <malloc.h>
#include <new>

using namespace tarvex;
using requests::Outcome;

namespace {

/// One in so many allocations fails, but for those of the test's own thread; 0 for none.
std::atomic<unsigned> scarcity = 0;
std::atomic<unsigned> allocations = 0;
thread_local bool isSpared = false;

constexpr std::string_view secret = "what only a body has";
std::atomic<unsigned> secretsLeft = 0; // in memory that was given back

/// Reads memory before it is given back, but for that of the test's own thread.
void lookInto(void *memory)
{
    const std::string_view bytes(static_cast<const char *>(memory), ::malloc_usable_size(memory));
    if (!isSpared && bytes.find(secret) != std::string_view::npos)
        ++secretsLeft;
}

struct Faults : Http
{
    Faults() { isSpared = true; }

    std::filesystem::path file() const { return m_folder.path() / "wheel.db"; }
    /// How a save ends, and what the operator is told of it.
    std::pair<Outcome, std::string> save()
    {
        const auto answer = answerTo(asAnna("create-sets", "&p4=Name"));
        return {answer.outcome, answer.cause};
    }
};

} // namespace

[[gnu::noinline]] void *operator new(std::size_t size)
{
    const unsigned oneIn = scarcity;
    if (!isSpared && oneIn != 0 && ++allocations % oneIn == 0)
        throw std::bad_alloc();
    if (void *const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void *memory) noexcept
{
    lookInto(memory);
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void *memory, std::size_t) noexcept
{
    lookInto(memory);
    std::free(memory);
}

TEST_F(Faults, GoesOnAfterMemoryWasScarceInAnyPlace)
{
    start({.handlerTime = std::chrono::milliseconds(200)});
    std::size_t confirmed = 0;
    for (const unsigned oneIn : {2U, 3U, 5U, 11U, 23U, 47U, 97U}) {
        for (int i = 0; i < 12; ++i) {
            scarcity = oneIn;
            try {
                RawClient client(port());
                const bool isSave = i % 3 != 0;
                const std::string login = i % 4 == 0 ? "nobody" : m_login;
                const std::string kind = isSave ? "p1=create-sets" : "p1=get-sets";
                std::string body = kind + credentials(login, m_password) + "&p4=Name";
                if (i % 2 != 0)
                    body.append("&x=").append(70'000, 'x');
                client.send(RawClient::request(body));
                confirmed += client.read().body() == "OK" ? 1U : 0U;
            } catch (const std::exception &) { // this connection had no luck
            }
            scarcity = 0;
        }
        EXPECT_EQ(RawClient(port()).post(asAnna("sign-in")).body(), "OK") << oneIn;
    }
    EXPECT_GT(confirmed, 0U);
    const std::string ids = column(RawClient(port()).post(asAnna("get-sets")).body(), "id");
    EXPECT_GE(static_cast<std::size_t>(std::count(ids.begin(), ids.end(), '[')), confirmed + 1);
}

TEST_F(Faults, LeavesNothingOfABodyInMemory)
{
    start({.bodiesInMemory = 100'000});
    for (const std::size_t size : {100U, 20'000U, 90'000U, 300'000U}) { // the last is refused
        const std::string body = asAnna("sign-in", "&p9=").append(secret).append("&x=").append(size, 'x');
        EXPECT_EQ(RawClient(port()).post(body).result_int(), size < 300'000 ? 200U : 503U);
        EXPECT_EQ(secretsLeft.exchange(0), 0U) << size;
    }
}

TEST_F(Faults, NoMemoryForAPasswordIsNotAWrongPassword)
{
    const auto check = [](const std::string &kibibytes) {
        return security::matchesPassword("$argon2id$v=19$m=" + kibibytes +
                                             ",t=1,p=1$c29tZXNhbHRzb21lc2FsdA$" + std::string(43, 'A'),
                                         "digest");
    };
    EXPECT_FALSE(check("64"));
    EXPECT_THROW(check("4294967294"), std::bad_alloc);
}

TEST_F(Faults, RefusesSavesWhileAFileOfTheDatabaseIsGone)
{
    const std::string log = file().string() + "-wal";
    for (const std::string &lost : {file().string(), log}) {
        EXPECT_EQ(save().first, Outcome::Done);
        std::filesystem::rename(lost, lost + "-moved");
        const auto refused =
            std::pair(Outcome::Failed, std::string("a file of the database was deleted or replaced"));
        EXPECT_EQ(save(), refused);
        std::ofstream(lost) << "another";
        EXPECT_EQ(save(), refused);
        std::filesystem::rename(lost + "-moved", lost);
    }
    EXPECT_EQ(save().first, Outcome::Done);
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "[1][4][3][2]"); // none of those that were refused
}

TEST_F(Faults, ReadsGoOnWhileAnotherProgramHoldsTheDatabase)
{
    EXPECT_EQ(save().first, Outcome::Done);
    auto database = std::make_unique<store::Database>(databaseUrl(m_folder));
    store::SqliteConnection other(file());
    other.execute("BEGIN IMMEDIATE");
    std::promise<std::exception_ptr> written;
    database->write([](store::Connection &) {},
                    [&](const std::exception_ptr &failure) { written.set_value(failure); });
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "[1][2]");
    database.reset(); // waits no longer
    EXPECT_THROW(std::rethrow_exception(written.get_future().get()), store::TransactionHindered);
    auto late = std::async(std::launch::async, [this] { return save(); });
    other.execute("COMMIT");
    EXPECT_EQ(late.get().first, Outcome::Done);
}

TEST_F(Faults, TheLogShrinksAfterAReaderMadeItGrow)
{
    store::SqliteConnection reader(file());
    reader.execute("BEGIN; SELECT COUNT(*) FROM goal");
    const std::string list = boost::algorithm::join(std::vector(50, goal(std::string(60'000, 'x'))), "");
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(postAsAnna("create-some-goals", "&p4=" + list), "OK");
    const auto size = [this] { return std::filesystem::file_size(file().string() + "-wal"); };
    EXPECT_GT(size(), 12'000'000U);
    reader.execute("COMMIT");
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(save().first, Outcome::Done);
    EXPECT_LE(size(), 8U * 1024 * 1024);
}
