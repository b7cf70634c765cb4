#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

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
        Statement &statement = prepared(sql);
        int parameter = 0;
        (statement.bind(++parameter, values), ...);
        return Rows(statement);
    }

    /// Runs a statement to its end, and tells how many rows it changed.
    template<class... Values>
    std::int64_t change(const char *sql, const Values &...values)
    {
        Rows all = rows(sql, values...);
        while (all.next()) {
        }
        return prepared(sql).changes();
    }

    /// A number that is another one whenever another session, be it of another process, has changed anything
    /// since it was asked last. Sessions do not compare.
    virtual std::int64_t version() = 0;
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
