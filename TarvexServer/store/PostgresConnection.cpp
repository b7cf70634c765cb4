#include "PostgresConnection.h"

#include "PostgresResult.h"
#include "StoreError.h"

#include <array>
#include <new>
#include <random>
#include <thread>

namespace tarvex::store {

namespace {

constexpr std::chrono::milliseconds betweenAttempts{100};
constexpr std::chrono::seconds sizeLifetime{10};
constexpr std::chrono::seconds longestAbsence{5};
constexpr std::chrono::seconds longestDoubt{20};

/// Whoever holds it keeps house; "tarvex" in letters of six bits.
constexpr const char *houseKeepersLock = "SELECT pg_try_advisory_lock(1956270712)::int";

/// What the server itself gives up, so that nobody waits behind a process that has stopped.
constexpr const char *sessionSettings =
    "SET client_min_messages = error; SET statement_timeout = '20s'; SET lock_timeout = '5s';"
    " SET idle_in_transaction_session_timeout = '30s';"
    // what is told to be written must be on disk
    " SELECT set_config('synchronous_commit', 'on', false)"
    " WHERE current_setting('synchronous_commit') IN ('off', 'local')";

std::string randomName()
{
    std::random_device source;
    std::uniform_int_distribution<std::uint64_t> number;
    return std::to_string(number(source)) + "-" + std::to_string(number(source));
}

} // namespace

void PostgresConnection::Closing::operator()(pg_conn *session) const
{
    PQfinish(session);
}

void PostgresConnection::Closing::operator()(pg_result *result) const
{
    PQclear(result);
}

PostgresConnection::PostgresConnection(const std::string &url) : m_url(url)
{
    loadLibpq();
    char *message = nullptr;
    const std::unique_ptr<PQconninfoOption, decltype(PQconninfoFree)> options(
        PQconninfoParse(url.c_str(), &message), PQconninfoFree);
    PQfreemem(message); // it may hold the password
    if (!options)
        throw CannotOpen("The address of the database is not as PostgreSQL writes them.");
}

PostgresConnection::~PostgresConnection()
{
    forgetStatements();
}

void PostgresConnection::lose() noexcept
{
    m_session.reset();
    ++m_preparations;
    m_isPreparing = false;
    m_keepers.clear();
    m_unanswered = 0;
    m_ends = 0;
    m_isHouseKept = false;
}

void PostgresConnection::breakOff(const char *reason)
{
    lose();
    throw TransactionBroken(reason);
}

void PostgresConnection::ensureSession()
{
    if (m_session && PQstatus(m_session.get()) == CONNECTION_OK)
        return;
    const Clock::time_point end = Clock::now() + longestAbsence;
    for (;;) {
        try {
            connect();
            return;
        } catch (const TransactionHindered &) {
            lose();
            if (m_waitGoesOn ? !m_waitGoesOn() : Clock::now() > end)
                throw;
        }
        std::this_thread::sleep_for(betweenAttempts);
    }
}

void PostgresConnection::connect()
{
    lose();
    // Those before the address can be set there, those behind it cannot.
    const std::array names = {"connect_timeout",
                              "target_session_attrs",
                              "tcp_user_timeout",
                              "application_name",
                              "dbname",
                              "client_encoding",
                              static_cast<const char *>(nullptr)};
    const std::array values = {"5",
                               "read-write",
                               "15000",
                               "tarvex-server",
                               m_url.c_str(),
                               "UTF8",
                               static_cast<const char *>(nullptr)};
    m_session.reset(PQconnectdbParams(names.data(), values.data(), /*expand_dbname=*/1));
    if (!m_session)
        throw std::bad_alloc();
    if (PQstatus(m_session.get()) != CONNECTION_OK)
        refuse();
    configure();
}

/// In the library's words, which tell where it looked and never the password.
void PostgresConnection::refuse()
{
    const std::string words = PQerrorMessage(m_session.get());
    throw TransactionHindered(words.substr(0, words.find('\n')));
}

void PostgresConnection::configure()
{
    const Result result(PQexec(m_session.get(), sessionSettings));
    if (isError(result.get()) || PQsetnonblocking(m_session.get(), /*arg=*/1) != 0 ||
        PQenterPipelineMode(m_session.get()) == 0)
        refuse();
}

void PostgresConnection::execute(const std::string &script)
{
    ensureSession();
    receive();
    PQexitPipelineMode(m_session.get());
    const Result result(PQexec(m_session.get(), script.c_str()));
    const bool isFailed = isError(result.get());
    const std::string state = stateOf(result.get());
    PQenterPipelineMode(m_session.get());
    if (isFailed)
        failWith(state);
}

std::int64_t PostgresConnection::numberOf(const std::string &query)
{
    ensureSession();
    noteSent(PQsendQueryParams(m_session.get(), query.c_str(), /*nParams=*/0, nullptr, nullptr, nullptr,
                               nullptr, /*resultFormat=*/0) != 0);
    const Result result = receive();
    return PQntuples(result.get()) > 0 ? numberIn(result.get(), /*row=*/0, /*column=*/0) : 0;
}

void PostgresConnection::begin(const char *sql)
{
    ensureSession();
    run(sql);
}

void PostgresConnection::beginReading()
{
    m_isWriting = false;
    begin("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
}

void PostgresConnection::beginWriting()
{
    m_isWriting = true;
    // Each transaction changes its account's row first, so that all see what those before them left.
    begin("BEGIN ISOLATION LEVEL READ COMMITTED READ WRITE");
    if (!m_writer.empty())
        leaveMark();
}

void PostgresConnection::settle()
{
    if (m_unanswered > 0)
        receive();
}

void PostgresConnection::commit()
{
    if (!m_isWriting) {
        run("COMMIT"); // nobody needs to know when
        if (m_session && PQpipelineSync(m_session.get()) == 1)
            ++m_ends;
        m_unanswered = 0;
        return;
    }
    try {
        run("COMMIT");
        if (PQcmdStatus(receive().get()) != std::string_view("COMMIT"))
            throw TransactionFailed("the database did not commit");
    } catch (const TransactionBroken &) {
        if (m_session || m_writer.empty())
            throw; // the server is there and has refused
        if (!isMarked())
            throw;
    }
}

void PostgresConnection::rollBack() noexcept
{
    if (!m_session)
        return;
    try {
        run("ROLLBACK");
        receive();
    } catch (const std::exception &) {
        lose();
    }
}

// Marks. Each writing transaction notes its number in a row of this session's own. When the session is lost
// before the answer to a commit, the row tells whether it came to be; reading it under a lock waits for a
// server that is still about to commit, and writing it waits for whatever standby the commit has to wait for.

void PostgresConnection::leaveMarks()
{
    m_writer = randomName();
    execute("DELETE FROM writer_mark WHERE noted_at < now() - interval '1 day'");
    beginWriting();
    run("INSERT INTO writer_mark (writer, mark, noted_at) VALUES ($1, $2, now())"
        " ON CONFLICT (writer) DO NOTHING",
        m_writer, m_mark);
    commit();
}

void PostgresConnection::leaveMark()
{
    run("UPDATE writer_mark SET mark = $1, noted_at = now() WHERE writer = $2", ++m_mark, m_writer);
}

bool PostgresConnection::isMarked()
{
    const Clock::time_point end = Clock::now() + longestDoubt;
    while (Clock::now() < end) {
        try {
            ensureSession();
            return firstNumber("UPDATE writer_mark SET noted_at = now() WHERE writer = $1 RETURNING mark",
                               m_writer) == m_mark;
        } catch (const TransactionHindered &) {
            std::this_thread::sleep_for(betweenAttempts);
        }
    }
    throw TransactionFailed("the database was lost, and it is not known whether it had committed");
}

bool PostgresConnection::keepsHouse()
{
    if (!m_isHouseKept)
        m_isHouseKept = firstNumber(houseKeepersLock) == 1;
    return m_isHouseKept;
}

std::int64_t PostgresConnection::size()
{
    if (const auto now = Clock::now(); m_sizeAt == Clock::time_point() || now > m_sizeAt + sizeLifetime) {
        m_size = firstNumber("SELECT pg_database_size(current_database())").value_or(0);
        m_sizeAt = now;
    }
    return m_size;
}

} // namespace tarvex::store
