#include "SqliteConnection.h"

#include "StoreError.h"

#include <chrono>
#include <new>
#include <string>
#include <system_error>
#include <thread>

namespace tarvex::store {

namespace {

/// How long a session waits for another process that holds the file.
constexpr int busyMilliseconds = 5000;

/// A busy process leaves the file for moments only.
constexpr std::chrono::milliseconds betweenLooks{1};

constexpr std::int64_t largestIdleLog = 8LL * 1024 * 1024; // bytes

[[noreturn]] void fail(sqlite3 *session)
{
    const int primaryCode = sqlite3_errcode(session) & 0xFF;
    if (primaryCode == SQLITE_BUSY || primaryCode == SQLITE_INTERRUPT)
        throw TransactionHindered(sqlite3_errmsg(session));
    if (primaryCode == SQLITE_NOMEM)
        throw std::bad_alloc();
    std::string fault = sqlite3_errmsg(session);
    if (const int cause = sqlite3_system_errno(session); primaryCode == SQLITE_IOERR && cause != 0)
        fault.append(": ").append(std::generic_category().message(cause)); // a full disk, say
    throw TransactionFailed(fault);
}

/// Whether the last session to end leaves the log, rather than brings it into the file and removes it.
void leaveLogAtEnd(sqlite3 *session, bool leaves)
{
    sqlite3_db_config(session, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, leaves ? 1 : 0, nullptr);
}

/// A session that its owner closes, and that leaves the log as it is.
sqlite3 *opened(const std::filesystem::path &file)
{
    sqlite3 *session = nullptr;
    // A path from the root, since the engine reads a leading "file:" or ":" in a way of its own.
    if (sqlite3_open_v2(std::filesystem::absolute(file).c_str(), &session,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
                        nullptr) != SQLITE_OK) {
        const std::string reason = sqlite3_errmsg(session);
        sqlite3_close(session);
        throw TransactionFailed(reason);
    }
    leaveLogAtEnd(session, /*leaves=*/true);
    return session;
}

/// The function of the SQL standard that this engine lacks: the bytes of a text.
void addOctetLength(sqlite3 *session)
{
    const auto octetLength = [](sqlite3_context *context, int, sqlite3_value **values) {
        sqlite3_result_int(context, sqlite3_value_bytes(values[0]));
    };
    if (sqlite3_create_function_v2(session, "octet_length", /*nArg=*/1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                   /*pApp=*/nullptr, octetLength, /*xStep=*/nullptr, /*xFinal=*/nullptr,
                                   /*xDestroy=*/nullptr) != SQLITE_OK)
        fail(session);
}

class SqliteStatement : public Statement
{
public:
    SqliteStatement(sqlite3 *session, std::string_view sql, unsigned flags)
    {
        if (sqlite3_prepare_v3(session, sql.data(), static_cast<int>(sql.size()), flags, &m_statement,
                               nullptr) != SQLITE_OK)
            fail(session);
    }
    ~SqliteStatement() override { sqlite3_finalize(m_statement); }
    SqliteStatement(const SqliteStatement &) = delete;
    SqliteStatement &operator=(const SqliteStatement &) = delete;

    void bind(int parameter, std::int64_t number) override
    {
        check(sqlite3_bind_int64(m_statement, parameter, number));
    }
    void bind(int parameter, std::string_view text) override
    {
        check(sqlite3_bind_text64(m_statement, parameter, text.data() != nullptr ? text.data() : "",
                                  text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
    }
    bool step() override
    {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE)
            check(result);
        return result == SQLITE_ROW;
    }
    std::int64_t number(int column) const override { return sqlite3_column_int64(m_statement, column); }
    std::string_view text(int column) const override
    {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
        return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))};
    }
    std::int64_t changes() const override { return sqlite3_changes64(sqlite3_db_handle(m_statement)); }
    void reset() noexcept override
    {
        sqlite3_reset(m_statement);
        sqlite3_clear_bindings(m_statement);
    }

private:
    void check(int result) const
    {
        if (result != SQLITE_OK)
            fail(sqlite3_db_handle(m_statement));
    }

    sqlite3_stmt *m_statement = nullptr;
};

} // namespace

SqliteConnection::SqliteConnection(const std::filesystem::path &file) : SqliteConnection(opened(file))
{
    sqlite3_busy_timeout(m_session, busyMilliseconds);
    SqliteConnection::execute("PRAGMA synchronous = FULL; PRAGMA fullfsync = ON; PRAGMA foreign_keys = ON;"
                              " PRAGMA secure_delete = ON"); // what is removed is overwritten
    addOctetLength(m_session);
    // The file can be read; beside one that cannot, the log may hold the rest.
    leaveLogAtEnd(m_session, /*leaves=*/false);
}

SqliteConnection::~SqliteConnection()
{
    forgetStatements();
    sqlite3_close(m_session);
}

void SqliteConnection::execute(const std::string &script)
{
    if (sqlite3_exec(m_session, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(m_session);
}

void SqliteConnection::useLog()
{
    SqliteStatement statement(m_session, "PRAGMA journal_mode = WAL", /*flags=*/0);
    if (!statement.step() || statement.text(/*column=*/0) != "wal")
        throw TransactionFailed("its file system does not take a write-ahead log");
    // A reader from outside may make it grow; it does not stay so large.
    execute("PRAGMA journal_size_limit = " + std::to_string(largestIdleLog));
}

void SqliteConnection::endLog()
{
    SqliteStatement statement(m_session, "PRAGMA journal_mode = DELETE", /*flags=*/0);
    if (!statement.step() || statement.text(/*column=*/0) != "delete")
        throw TransactionHindered("its log is in use");
}

void SqliteConnection::keepToItself()
{
    constexpr int momentMilliseconds = 500; // others may be about to end
    sqlite3_busy_timeout(m_session, momentMilliseconds);
    execute("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT");
}

void SqliteConnection::copyTo(SqliteConnection &target, std::chrono::milliseconds pause)
{
    constexpr int pagesAtOnce = 32; // takes a core, where there is but one, for a fraction of a millisecond
    sqlite3_backup *const copying = sqlite3_backup_init(target.m_session, "main", m_session, "main");
    if (copying == nullptr)
        fail(target.m_session);
    while (sqlite3_backup_step(copying, pagesAtOnce) == SQLITE_OK)
        std::this_thread::sleep_for(pause);
    if (sqlite3_backup_finish(copying) != SQLITE_OK)
        fail(target.m_session);
}

bool SqliteConnection::emptyLog()
{
    return numberOf("PRAGMA wal_checkpoint(TRUNCATE)") == 0;
}

std::int64_t SqliteConnection::numberOf(const std::string &query)
{
    SqliteStatement statement(m_session, query, /*flags=*/0);
    return statement.step() ? statement.number(/*column=*/0) : 0;
}

std::int64_t SqliteConnection::pragma(const char *sql)
{
    return firstNumber(sql).value_or(0);
}

std::int64_t SqliteConnection::size()
{
    return (pragma("PRAGMA page_count") - pragma("PRAGMA freelist_count")) * pragma("PRAGMA page_size");
}

void SqliteConnection::rollBack() noexcept
{
    if (sqlite3_get_autocommit(m_session) == 0)
        sqlite3_exec(m_session, "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteConnection::waitWhile(std::function<bool()> goesOn)
{
    m_waitGoesOn = std::move(goesOn);
    const auto wait = [](void *self, int) {
        if (!static_cast<SqliteConnection *>(self)->m_waitGoesOn())
            return 0;
        std::this_thread::sleep_for(betweenLooks);
        return 1;
    };
    sqlite3_busy_handler(m_session, wait, this);
}

void SqliteConnection::beginReading()
{
    constexpr int moment = 20; // thousand steps of the engine, a millisecond or so
    m_haste = moment;
    change("BEGIN");
}

void SqliteConnection::commit()
{
    if (m_place)
        m_place->check();
    change("COMMIT");
}

void SqliteConnection::haste()
{
    constexpr int stepsBetween = 1000;
    sqlite3_busy_timeout(m_session, /*ms=*/0);
    const auto isOver = [](void *left) { return --*static_cast<int *>(left) < 0 ? 1 : 0; };
    sqlite3_progress_handler(m_session, stepsBetween, isOver, &m_haste);
}

std::unique_ptr<Statement> SqliteConnection::prepare(std::string_view sql)
{
    return std::make_unique<SqliteStatement>(m_session, sql, SQLITE_PREPARE_PERSISTENT);
}

} // namespace tarvex::store
