// What the service on PostgreSQL is measured against: libpq with kept statements and as many sessions,
// without limits, times, passwords or a log.
//
//   bench-postgres-peer select ADDRESS         one select a request, in four sessions
//   bench-postgres-peer group-commit ADDRESS   ten new goals a request; all that wait together are sent at
//   once and
//                                              under one commit

#include "BareServer.h"

#include <array>
#include <cstdlib>
#include <libpq-fe.h>

namespace {

constexpr std::size_t readers = 4; // as many as the service has
constexpr std::array<const char *, 0> nothing{};

struct Closing
{
    void operator()(PGconn *session) const { PQfinish(session); }
    void operator()(PGresult *result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, Closing>;

class Session
{
public:
    explicit Session(const std::string &address) : m_session(PQconnectdb(address.c_str()))
    {
        require(PQstatus(get()) == CONNECTION_OK);
    }

    void prepare(const char *name, const char *sql)
    {
        requireOk(Result(PQprepare(get(), name, sql, 0, nullptr)));
    }
    template<std::size_t count>
    Result run(const char *name, const std::array<const char *, count> &values)
    {
        Result result(PQexecPrepared(get(), name, count, values.data(), nullptr, nullptr, 0));
        requireOk(result);
        return result;
    }

    void beginLine() { require(PQenterPipelineMode(get()) == 1); }
    template<std::size_t count>
    void send(const char *name, const std::array<const char *, count> &values)
    {
        require(PQsendQueryPrepared(get(), name, count, values.data(), nullptr, nullptr, 0) == 1);
    }
    /// Waits for all that was sent.
    void endLine()
    {
        require(PQpipelineSync(get()) == 1);
        for (;;) {
            const Result result(PQgetResult(get()));
            if (!result)
                continue; // behind the results of a statement
            if (PQresultStatus(result.get()) == PGRES_PIPELINE_SYNC)
                return;
            requireOk(result);
        }
    }

private:
    PGconn *get() const { return m_session.get(); }
    void requireOk(const Result &result)
    {
        const ExecStatusType status = PQresultStatus(result.get());
        require(status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK);
    }
    void require(bool holds)
    {
        if (holds)
            return;
        std::cerr << PQerrorMessage(get());
        std::exit(1);
    }

    std::unique_ptr<PGconn, Closing> m_session;
};

Serve select(const std::string &address, asio::io_context &io)
{
    const auto threads = std::make_shared<asio::thread_pool>(readers);
    const auto read = [address](const std::string &body) {
        thread_local Session session = [&] {
            Session made(address);
            made.prepare("goals", "SELECT goal.goal_id, goal.name, goal.priority, goal.checked FROM login"
                                  " JOIN account ON account.account_id = login.account_id"
                                  " JOIN goal ON goal.account_id = account.account_id"
                                  " WHERE login.login_digest = $1 AND goal.set_id = $2 AND goal.area_id = $3"
                                  " AND goal.deleted_at IS NULL ORDER BY goal.goal_id");
            return made;
        }();
        const std::string login(field(body, "&p2="));
        const std::string set(field(body, "&p4="));
        const std::string area(field(body, "&p5="));
        const Result rows = session.run("goals", std::array{login.c_str(), set.c_str(), area.c_str()});
        std::string answer = R"(<?xml version="1.0" encoding="UTF-8"?><answer>)";
        for (int row = 0; row < PQntuples(rows.get()); ++row) {
            const auto text = [&](int column) { return PQgetvalue(rows.get(), row, column); };
            addGoal(answer, text(0), text(1), text(2), *text(3) == '1');
        }
        return answer.append("</answer>");
    };
    return [threads, read, &io](const std::string &body, Done done) {
        asio::post(*threads, [read, body, done = std::move(done), &io] {
            asio::post(io, [answer = read(body), done] { done(answer); });
        });
    };
}

/// Each statement waits for the one before, or all of them go out at once.
Serve groupCommit(const std::string &address, asio::io_context &io, bool atOnce)
{
    const auto session = std::make_shared<Session>(address);
    session->prepare("last", "SELECT MAX(goal_id) FROM goal");
    session->prepare("begin", "BEGIN");
    session->prepare("insert",
                     "INSERT INTO goal (account_id, goal_id, set_id, area_id, name, priority, checked)"
                     " SELECT account_id, $2, 1, 1, 'A goal as people write them, a line', 5, 0"
                     " FROM login WHERE login_digest = $1");
    session->prepare("commit", "COMMIT");
    const Result last = session->run("last", nothing);
    if (atOnce)
        session->beginLine();
    const auto run = [session, atOnce](const char *name, const auto &values) {
        if (atOnce)
            session->send(name, values);
        else
            session->run(name, values);
    };
    return inGroups(io, [=, id = std::atol(PQgetvalue(last.get(), 0, 0))](const Logins &logins) mutable {
        run("begin", nothing);
        for (const std::string &login : logins)
            for (int i = 0; i < 10; ++i)
                run("insert", std::array{login.c_str(), std::to_string(++id).c_str()});
        run("commit", nothing);
        if (atOnce)
            session->endLine();
    });
}

} // namespace

int main(int count, char **arguments)
{
    const std::vector<std::string> words(arguments + 1, arguments + count);
    if (words.size() != 2)
        return 2;
    asio::io_context io(/*concurrency_hint=*/1);
    listen(io, words[0] == "select" ? select(words[1], io)
                                    : groupCommit(words[1], io, /*atOnce=*/words[0] == "at-once"));
}
