#pragma once

#include "EngineSession.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct pg_conn;
struct pg_result;

namespace tarvex::store {

class PostgresStatement;

/// A session with a PostgreSQL server. It is begun with the first transaction, and anew with the next one
/// after it was lost.
///
/// Statements whose results nobody asks for are sent together with the next one whose result is. Failures are
/// told by the engine's five letters (SQLSTATE), since its words may carry values; those that do not lie in
/// what was asked, such as a lost session or a deadlock, throw TransactionBroken.
class PostgresConnection : public EngineSession
{
public:
    /// The URL is libpq's own. Throws CannotOpen if it is none, or if this machine lacks libpq.
    explicit PostgresConnection(const std::string &url);
    ~PostgresConnection() override;

    void beginReading() override;
    void beginWriting() override;
    void settle() override;
    /// When the session is lost meanwhile, another one finds out what became of the transaction.
    void commit() override;
    void rollBack() noexcept override;
    void execute(const std::string &script) override;
    std::int64_t numberOf(const std::string &query) override;
    void waitWhile(std::function<bool()> goesOn) override { m_waitGoesOn = std::move(goesOn); }

    /// From now on every writing transaction leaves a mark, by which its outcome can be learned later. The
    /// schema must be there.
    void leaveMarks();

    bool keepsHouse() override;
    std::int64_t size() override;

private:
    friend class PostgresStatement;
    struct Closing
    {
        void operator()(pg_conn *session) const;
        void operator()(pg_result *result) const;
    };
    using Result = std::unique_ptr<pg_result, Closing>;
    using Clock = std::chrono::steady_clock;

    std::unique_ptr<Statement> prepare(std::string_view sql) override;
    void ensureSession();
    void connect();
    void configure();
    [[noreturn]] void refuse();
    void lose() noexcept;
    void begin(const char *sql);
    bool isMarked();
    void leaveMark();

    // These put something into the line of what is to be answered.
    void sendPreparation(const std::string &name, const std::string &sql);
    void send(const std::string &name, const std::vector<std::string> &parameters, PostgresStatement *keeper);
    /// Notes who keeps the result of what was put there; breaks off if it could not be.
    void noteSent(bool isSent, PostgresStatement *keeper = nullptr);
    std::string nextName() { return "s" + std::to_string(++m_statements); }
    /// The last result that nobody keeps of all that were sent; throws what went wrong first.
    Result receive();
    Result nextResult(Clock::time_point deadline);
    void waitForServer(Clock::time_point deadline);
    void sendPending(Clock::time_point deadline);
    [[noreturn]] void breakOff(const char *reason = "the session with the database was lost");

    std::string m_url;
    std::unique_ptr<pg_conn, Closing> m_session;
    std::function<bool()> m_waitGoesOn;
    std::deque<PostgresStatement *> m_keepers; // of the results to come; mostly nobody
    std::size_t m_unanswered = 0;              // what was sent since an answer was awaited
    int m_ends = 0;                            // of lines whose answers are not read yet
    std::size_t m_statements = 0;
    std::size_t m_preparations = 0; // another number when what was prepared before is there no more
    bool m_isPreparing = false;     // in the line that is not answered yet
    std::string m_writer;           // who the marks are of; empty without any
    std::int64_t m_mark = 0;
    bool m_isWriting = false;
    bool m_isHouseKept = false;
    std::int64_t m_size = 0;
    Clock::time_point m_sizeAt{};
};

} // namespace tarvex::store
