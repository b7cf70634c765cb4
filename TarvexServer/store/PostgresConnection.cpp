#include "PostgresConnection.h"

#include "StoreError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <libpq-fe.h>
#include <new>
#include <poll.h>
#include <random>
#include <thread>

namespace tarvex::store {

namespace {

constexpr std::chrono::seconds longestAnswer{20};
constexpr std::chrono::milliseconds betweenAttempts{100};
constexpr std::chrono::seconds sizeLifetime{10};
constexpr std::chrono::seconds longestAbsence{5};
constexpr std::chrono::seconds longestDoubt{20};
constexpr std::string_view demoted = "25006"; // a server that writes no more
constexpr std::size_t longestLine = 500;      // of statements, so that no side has to keep too many answers

/// Whoever holds it keeps house; "tarvex" in letters of six bits.
constexpr const char *houseKeepersLock = "SELECT pg_try_advisory_lock(1956270712)::int";

/// What the server itself gives up, so that nobody waits behind a process that has stopped.
constexpr const char *sessionSettings =
    "SET client_min_messages = error; SET statement_timeout = '20s'; SET lock_timeout = '5s';"
    " SET idle_in_transaction_session_timeout = '30s';"
    // what is told to be written must be on disk
    " SELECT set_config('synchronous_commit', 'on', false)"
    " WHERE current_setting('synchronous_commit') IN ('off', 'local')";

/// Whether a failure lies in the circumstances rather than in the statement: the session, a deadlock,
/// transactions that met, a server that stops or has no room for another session.
bool isPassing(std::string_view state)
{
    return state.empty() || state.starts_with("08") || state.starts_with("40") || state.starts_with("57P") ||
           state == "53300" || state == demoted;
}

std::string stateOf(const PGresult *result)
{
    const char *const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    return state != nullptr ? state : "";
}

[[noreturn]] void fail(const std::string &state)
{
    const std::string text = "the database answered with error " + (state.empty() ? "08000" : state);
    if (isPassing(state))
        throw TransactionBroken(text);
    if (state == "55P03" ||
        state == "57014") // a lock that was not had in time, a statement that took too long
        throw TransactionHindered(text);
    throw TransactionFailed(text);
}

bool isError(const PGresult *result)
{
    const ExecStatusType status = PQresultStatus(result);
    return status == PGRES_FATAL_ERROR || status == PGRES_BAD_RESPONSE;
}

std::int64_t numberIn(const PGresult *result, int row, int column)
{
    const char *const text = PQgetvalue(result, row, column);
    std::int64_t number = 0;
    std::from_chars(text, text + PQgetlength(result, row, column), number);
    return number;
}

std::string randomName()
{
    std::random_device source;
    std::uniform_int_distribution<std::uint64_t> number;
    return std::to_string(number(source)) + "-" + std::to_string(number(source));
}

} // namespace

class PostgresStatement : public Statement
{
public:
    PostgresStatement(PostgresConnection &session, std::string_view sql) : m_session(session), m_sql(sql) {}

    void bind(int parameter, std::int64_t number) override { bind(parameter, std::to_string(number)); }
    void bind(int parameter, std::string_view text) override
    {
        const auto count = static_cast<std::size_t>(parameter);
        m_parameters.resize(std::max(m_parameters.size(), count));
        m_parameters[count - 1] = text;
    }
    bool step() override
    {
        if (!m_result && m_isAhead) {
            m_session.receive();
        } else if (!m_result) {
            run();
            m_result = m_session.receive();
        }
        return ++m_row < PQntuples(m_result.get());
    }
    void run() override { send(/*keeper=*/nullptr); }
    void runAhead() override
    {
        m_isAhead = true;
        send(/*keeper=*/this);
    }
    void keep(PostgresConnection::Result result) { m_result = std::move(result); }
    std::int64_t number(int column) const override { return numberIn(m_result.get(), m_row, column); }
    std::string_view text(int column) const override
    {
        return {PQgetvalue(m_result.get(), m_row, column),
                static_cast<std::size_t>(PQgetlength(m_result.get(), m_row, column))};
    }
    std::int64_t changes() const override
    {
        return std::strtoll(PQcmdTuples(m_result.get()), nullptr, /*base=*/10);
    }
    void reset() noexcept override
    {
        if (std::exchange(m_isAhead, false))
            std::replace(m_session.m_keepers.begin(), m_session.m_keepers.end(), this,
                         static_cast<PostgresStatement *>(nullptr));
        m_result.reset();
        m_parameters.clear();
        m_row = -1;
    }

private:
    void send(PostgresStatement *keeper)
    {
        if (m_name.empty() || m_preparation != m_session.m_preparations) {
            m_name = m_session.nextName();
            m_session.sendPreparation(m_name, m_sql);
            m_preparation = m_session.m_preparations;
        }
        m_session.send(m_name, m_parameters, keeper);
    }

    PostgresConnection &m_session;
    std::string m_sql;
    std::string m_name;            // empty until it is prepared
    std::size_t m_preparation = 0; // which that was
    std::vector<std::string> m_parameters;
    bool m_isAhead = false; // and its result comes to keep()
    PostgresConnection::Result m_result;
    int m_row = -1;
};

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
    char *message = nullptr;
    const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(
        PQconninfoParse(url.c_str(), &message), &PQconninfoFree);
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
        fail(state);
}

std::int64_t PostgresConnection::numberOf(const std::string &query)
{
    ensureSession();
    if (PQsendQueryParams(m_session.get(), query.c_str(), /*nParams=*/0, nullptr, nullptr, nullptr, nullptr,
                          /*resultFormat=*/0) == 0)
        breakOff("the session with the database was lost");
    m_keepers.push_back(nullptr);
    ++m_unanswered;
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
            Rows found =
                rows("UPDATE writer_mark SET noted_at = now() WHERE writer = $1 RETURNING mark", m_writer);
            return found.next() && found.number(0) == m_mark;
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

std::unique_ptr<Statement> PostgresConnection::prepare(std::string_view sql)
{
    return std::make_unique<PostgresStatement>(*this, sql);
}

void PostgresConnection::sendPreparation(const std::string &name, const std::string &sql)
{
    if (!m_session || PQsendPrepare(m_session.get(), name.c_str(), sql.c_str(), /*nParams=*/0, nullptr) == 0)
        breakOff("the session with the database was lost");
    m_isPreparing = true;
    m_keepers.push_back(nullptr);
    ++m_unanswered;
}

void PostgresConnection::send(const std::string &name, const std::vector<std::string> &parameters,
                              PostgresStatement *keeper)
{
    if (m_unanswered >= longestLine)
        receive();
    std::vector<const char *> values(parameters.size());
    std::transform(parameters.begin(), parameters.end(), values.begin(),
                   [](const std::string &parameter) { return parameter.c_str(); });
    if (!m_session || PQsendQueryPrepared(m_session.get(), name.c_str(), static_cast<int>(values.size()),
                                          values.data(), nullptr, nullptr, /*resultFormat=*/0) == 0)
        breakOff("the session with the database was lost");
    m_keepers.push_back(keeper);
    ++m_unanswered;
}

PostgresConnection::Result PostgresConnection::receive()
{
    const Clock::time_point deadline = Clock::now() + longestAnswer;
    if (!m_session || PQpipelineSync(m_session.get()) == 0)
        breakOff("the session with the database was lost");
    ++m_ends;
    m_unanswered = 0;
    sendPending(deadline);
    Result last;
    std::optional<std::string> error;
    while (m_ends > 0) {
        Result result = nextResult(deadline);
        if (!result)
            continue; // behind the results of a statement
        if (PQresultStatus(result.get()) == PGRES_PIPELINE_SYNC) {
            --m_ends;
            continue;
        }
        PostgresStatement *keeper = nullptr;
        if (!m_keepers.empty()) { // which it is for an error that answers nothing
            keeper = m_keepers.front();
            m_keepers.pop_front();
        }
        if (isError(result.get()) && !error)
            error = stateOf(result.get());
        else if (keeper != nullptr)
            keeper->keep(std::move(result));
        else if (PQresultStatus(result.get()) != PGRES_PIPELINE_ABORTED)
            last = std::move(result);
    }
    const bool wasPreparing = std::exchange(m_isPreparing, false);
    if (!error)
        return last;
    if (wasPreparing)
        ++m_preparations; // which of them came to be cannot be told
    if (error == demoted || error->starts_with("57P"))
        lose();
    fail(*error);
}

PostgresConnection::Result PostgresConnection::nextResult(Clock::time_point deadline)
{
    while (PQisBusy(m_session.get()) != 0)
        waitForServer(deadline);
    Result result(PQgetResult(m_session.get()));
    if (PQstatus(m_session.get()) != CONNECTION_OK)
        breakOff("the session with the database was lost");
    return result;
}

void PostgresConnection::sendPending(Clock::time_point deadline)
{
    while (PQflush(m_session.get()) > 0)
        waitForServer(deadline);
}

/// Until there is something to read or, if something is left to be sent, to send.
void PostgresConnection::waitForServer(Clock::time_point deadline)
{
    const bool isPending = PQflush(m_session.get()) > 0;
    pollfd socket{.fd = PQsocket(m_session.get()),
                  .events = static_cast<short>(isPending ? POLLIN | POLLOUT : POLLIN),
                  .revents = 0};
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const int ready = ::poll(&socket, /*nfds=*/1, static_cast<int>(std::max<long>(rest.count(), 0)));
    if (ready == 0)
        breakOff("the database does not answer");
    if ((socket.revents & POLLOUT) != 0)
        PQflush(m_session.get());
    if ((socket.revents & ~POLLOUT) != 0 && PQconsumeInput(m_session.get()) == 0)
        breakOff("the session with the database was lost");
}

} // namespace tarvex::store
