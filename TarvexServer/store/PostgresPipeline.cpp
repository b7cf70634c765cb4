#include "PostgresConnection.h"

#include "PostgresResult.h"

#include <algorithm>
#include <poll.h>
#include <utility>

namespace tarvex::store {

namespace {

constexpr std::chrono::seconds longestAnswer{20};
constexpr std::size_t longestLine = 500; // of statements, so that no side has to keep too many answers

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

std::unique_ptr<Statement> PostgresConnection::prepare(std::string_view sql)
{
    return std::make_unique<PostgresStatement>(*this, sql);
}

void PostgresConnection::noteSent(bool isSent, PostgresStatement *keeper)
{
    if (!isSent)
        breakOff();
    m_keepers.push_back(keeper);
    ++m_unanswered;
}

void PostgresConnection::sendPreparation(const std::string &name, const std::string &sql)
{
    m_isPreparing = true;
    noteSent(m_session &&
             PQsendPrepare(m_session.get(), name.c_str(), sql.c_str(), /*nParams=*/0, nullptr) != 0);
}

void PostgresConnection::send(const std::string &name, const std::vector<std::string> &parameters,
                              PostgresStatement *keeper)
{
    if (m_unanswered >= longestLine)
        receive();
    std::vector<const char *> values(parameters.size());
    std::transform(parameters.begin(), parameters.end(), values.begin(),
                   [](const std::string &parameter) { return parameter.c_str(); });
    noteSent(m_session && PQsendQueryPrepared(m_session.get(), name.c_str(), static_cast<int>(values.size()),
                                              values.data(), nullptr, nullptr, /*resultFormat=*/0) != 0,
             keeper);
}

PostgresConnection::Result PostgresConnection::receive()
{
    const Clock::time_point deadline = Clock::now() + longestAnswer;
    if (!m_session || PQpipelineSync(m_session.get()) == 0)
        breakOff();
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
    failWith(*error);
}

PostgresConnection::Result PostgresConnection::nextResult(Clock::time_point deadline)
{
    while (PQisBusy(m_session.get()) != 0)
        waitForServer(deadline);
    Result result(PQgetResult(m_session.get()));
    if (PQstatus(m_session.get()) != CONNECTION_OK)
        breakOff();
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
        breakOff();
}

} // namespace tarvex::store
