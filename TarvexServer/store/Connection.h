#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarvex::store {

/// One statement of an engine, prepared once and run again and again. Parameters count from 1, columns from
/// 0. What fails throws TransactionFailed.
class Statement
{
public:
    virtual ~Statement() = default;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    virtual void bind(int parameter, std::int64_t number) = 0;
    virtual void bind(int parameter, std::string_view text) = 0;

    /// Runs it up to its next row; false behind the last.
    virtual bool step() = 0;
    /// Runs it to its end, which may be put off for as long as nobody asks for anything.
    virtual void run()
    {
        while (step()) {
        }
    }
    /// Lets it run now, while others do; step() then waits for its rows. Only across a network is there a
    /// difference.
    virtual void runAhead() {}
    virtual std::int64_t number(int column) const = 0;
    /// Valid until the next step.
    virtual std::string_view text(int column) const = 0;
    /// The rows that it changed, once it has run to its end.
    virtual std::int64_t changes() const = 0;
    /// Ends it, wherever it stands, and forgets its parameters.
    virtual void reset() noexcept = 0;

protected:
    Statement() = default;
};

/// The rows that a statement finds, one after the other.
class Rows
{
public:
    explicit Rows(Statement &statement) : m_statement(&statement) {}
    Rows(Rows &&other) noexcept : m_statement(std::exchange(other.m_statement, nullptr)) {}
    Rows &operator=(Rows &&) = delete;
    ~Rows()
    {
        if (m_statement != nullptr)
            m_statement->reset();
    }

    bool next() { return m_statement->step(); }
    std::int64_t number(int column) const { return m_statement->number(column); }
    std::string_view text(int column) const { return m_statement->text(column); }

private:
    friend class Connection;

    Statement *m_statement;
};

/// A session of an engine inside an open transaction: what the functions of this folder work on. It is handed
/// out by Database and must not be kept beyond the transaction.
///
/// The SQL is what SQLite and PostgreSQL have in common. Its parameters are $1, $2 ... in the order in which
/// they first stand there.
class Connection
{
public:
    virtual ~Connection() = default;
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// Begins a statement with its parameters. The SQL is a literal: it is prepared once and known by its
    /// place from then on. A statement must have come to its end before it is begun again.
    template<class... Values>
    Rows rows(const char *sql, const Values &...values)
    {
        Rows begun(prepared(sql));
        int parameter = 0;
        (begun.m_statement->bind(++parameter, values), ...);
        return begun;
    }

    /// The same for rows that are looked at only after those of the next statement, with which they come.
    template<class... Values>
    Rows rowsAhead(const char *sql, const Values &...values)
    {
        Rows begun = rows(sql, values...);
        begun.m_statement->runAhead();
        return begun;
    }

    /// The number that a query's first row begins with; nothing without a row.
    template<class... Values>
    std::optional<std::int64_t> firstNumber(const char *sql, const Values &...values)
    {
        Rows found = rows(sql, values...);
        return found.next() ? std::optional(found.number(0)) : std::nullopt;
    }

    /// Runs a statement to its end, and tells how many rows it changed.
    template<class... Values>
    std::int64_t change(const char *sql, const Values &...values)
    {
        Rows all = rows(sql, values...);
        while (all.next()) {
        }
        return all.m_statement->changes();
    }

    /// Runs a statement whose changes nobody counts. Across a network it may go together with later ones:
    /// what fails then fails with one of these, or with the commit.
    template<class... Values>
    void run(const char *sql, const Values &...values)
    {
        rows(sql, values...).m_statement->run();
    }

    /// The same with as many parameters as there are values; those of numbers may be texts.
    void runWith(const char *sql, const std::vector<std::string> &values)
    {
        Statement &statement = prepared(sql);
        const Rows end(statement);
        int parameter = 0;
        for (const std::string &value : values)
            statement.bind(++parameter, value);
        statement.run();
    }

    /// Whether it is this process, of all that have the database open, that tidies it up.
    virtual bool keepsHouse() = 0;
    /// The bytes that the data take, without those that were freed and are used again before any others.
    virtual std::int64_t size() = 0;

protected:
    Connection() = default;

    virtual std::unique_ptr<Statement> prepare(std::string_view sql) = 0;
    /// To be called before the engine's session ends.
    void forgetStatements() { m_statements.clear(); }

private:
    Statement &prepared(const char *sql)
    {
        std::unique_ptr<Statement> &statement = m_statements[sql];
        if (!statement)
            statement = prepare(sql);
        return *statement;
    }

    std::unordered_map<const char *, std::unique_ptr<Statement>> m_statements;
};

} // namespace tarvex::store
