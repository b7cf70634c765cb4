// What the service is measured against: as little as can do the same job on the same libraries, in one thread
// and without limits, times, passwords or a log.
//
//   bench-server-peer select DATABASE         one prepared select and its rows as XML
//   bench-server-peer fixed LENGTH            so many bytes, always the same
//   bench-server-peer group-commit DATABASE   ten new goals; a thread commits all that wait together
//   bench-server-peer commits DATABASE        the same goals one commit after the other, for seconds that are
//                                             told on standard input; prints how many a second

#include "BareServer.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <sqlite3.h>

namespace {

/// One statement on a database of its own connection, both for as long as the process runs.
class Query
{
public:
    Query(const std::string &file, const char *sql)
    {
        check(
            sqlite3_open_v2(file.c_str(), &m_session, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr));
        execute("PRAGMA synchronous = FULL");
        check(sqlite3_prepare_v3(m_session, sql, -1, SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
    }

    void execute(const char *sql) { check(sqlite3_exec(m_session, sql, nullptr, nullptr, nullptr)); }
    void bind(int parameter, std::int64_t number)
    {
        check(sqlite3_bind_int64(m_statement, parameter, number));
    }
    void bind(int parameter, std::string_view text)
    {
        check(sqlite3_bind_text(m_statement, parameter, text.data(), static_cast<int>(text.size()),
                                SQLITE_STATIC));
    }
    bool step()
    {
        const int result = sqlite3_step(m_statement);
        if (result == SQLITE_ROW)
            return true;
        check(result == SQLITE_DONE ? SQLITE_OK : result);
        check(sqlite3_reset(m_statement));
        return false;
    }
    std::int64_t number(int column) { return sqlite3_column_int64(m_statement, column); }
    std::string_view text(int column)
    {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
        return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))};
    }

private:
    void check(int result)
    {
        if (result == SQLITE_OK)
            return;
        std::cerr << sqlite3_errmsg(m_session) << "\n";
        std::exit(1);
    }

    sqlite3 *m_session = nullptr;
    sqlite3_stmt *m_statement = nullptr;
};

Serve select(const std::string &file)
{
    const auto query = std::make_shared<Query>(
        file, "SELECT goal.goal_id, goal.name, goal.priority, goal.checked FROM login"
              " JOIN account ON account.account_id = login.account_id"
              " JOIN goal ON goal.account_id = account.account_id"
              " WHERE login.login_digest = ?1 AND goal.set_id = ?2 AND goal.area_id = ?3"
              " AND goal.deleted_at IS NULL ORDER BY goal.goal_id");
    return [query](const std::string &body, const Done &done) {
        query->bind(1, field(body, "&p2="));
        query->bind(2, std::stol(std::string(field(body, "&p4="))));
        query->bind(3, std::stol(std::string(field(body, "&p5="))));
        std::string answer = R"(<?xml version="1.0" encoding="UTF-8"?><answer>)";
        while (query->step())
            addGoal(answer, std::to_string(query->number(0)), query->text(1),
                    std::to_string(query->number(2)), query->number(3) != 0);
        done(answer.append("</answer>"));
    };
}

/// Puts ten goals at a time into the first place of an account.
class Inserter
{
public:
    explicit Inserter(const std::string &file)
        : m_insert(file, "INSERT INTO goal (account_id, goal_id, set_id, area_id, name, priority, checked)"
                         " SELECT account_id, ?2, 1, 1, 'A goal as people write them, a line', 5, 0"
                         " FROM login WHERE login_digest = ?1")
    {
        Query lastId(file, "SELECT MAX(goal_id) FROM goal");
        lastId.step();
        m_lastId = lastId.number(0);
        lastId.step(); // to its end, or it would keep the log from being put back
    }

    void begin() { m_insert.execute("BEGIN IMMEDIATE"); }
    void insert(std::string_view login)
    {
        for (int i = 0; i < 10; ++i) {
            m_insert.bind(1, login);
            m_insert.bind(2, ++m_lastId);
            m_insert.step();
        }
    }
    void commit() { m_insert.execute("COMMIT"); }

private:
    Query m_insert;
    std::int64_t m_lastId = 0;
};

Serve groupCommit(const std::string &file, asio::io_context &io)
{
    return inGroups(io, [inserter = std::make_shared<Inserter>(file)](const Logins &logins) {
        inserter->begin();
        for (const std::string &login : logins)
            inserter->insert(login);
        inserter->commit();
    });
}

/// For every line of input, which is a number of seconds.
void commits(const std::string &file)
{
    Query query(file, "SELECT login_digest FROM login ORDER BY login_digest LIMIT 16");
    std::vector<std::string> logins;
    while (query.step())
        logins.emplace_back(query.text(0));
    Inserter inserter(file);
    for (double seconds = 0; std::cin >> seconds;) {
        std::size_t count = 0;
        const auto begin = std::chrono::steady_clock::now();
        std::chrono::duration<double> time{};
        for (; time.count() < seconds; time = std::chrono::steady_clock::now() - begin) {
            inserter.begin();
            inserter.insert(logins[count++ % logins.size()]);
            inserter.commit();
        }
        std::cout << static_cast<double>(count) / time.count() << std::endl;
    }
}

} // namespace

int main(int count, char **arguments)
{
    const std::vector<std::string> words(arguments + 1, arguments + count);
    if (words.size() != 2)
        return 2;
    if (words[0] == "commits") {
        commits(words[1]);
        return 0;
    }
    asio::io_context io(/*concurrency_hint=*/1);
    const auto fixed = [&](const std::string &, const Done &done) {
        done(std::string(std::stoul(words[1]), 'x'));
    };
    const Serve serve = words[0] == "select"  ? select(words[1])
                        : words[0] == "fixed" ? Serve(fixed)
                                              : groupCommit(words[1], io);
    listen(io, serve);
}
