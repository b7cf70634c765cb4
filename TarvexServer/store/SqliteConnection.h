#pragma once

#include "EngineSession.h"
#include "FilePlace.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <sqlite3.h>

namespace tarvex::store {

/// A session with a database file of SQLite; failures have the engine's words.
class SqliteConnection : public EngineSession
{
public:
    /// The file must be there.
    explicit SqliteConnection(const std::filesystem::path &file);
    ~SqliteConnection() override;

    void beginReading() override;
    void beginWriting() override { change("BEGIN IMMEDIATE"); }
    void settle() override {}
    void commit() override;
    void rollBack() noexcept override;
    void execute(const std::string &script) override;
    std::int64_t numberOf(const std::string &query) override;
    void waitWhile(std::function<bool()> goesOn) override;

    /// Has every change go to a log beside the file first, which readers need not wait for. Throws
    /// TransactionFailed where that cannot be, as on the file systems of some networks.
    void useLog();
    /// Brings all of the log into the file and leaves it empty; false if somebody still reads in it.
    bool emptyLog();
    /// Has everything in the one file again, with nothing beside it. Nobody else may have it open.
    void endLog();
    /// Lets nobody else use the file until the session ends. Throws TransactionHindered if somebody does.
    void keepToItself();
    /// Writes all that the database holds into another one, in small steps with pauses between them. The
    /// transaction that this session is in says as of when; without one it may begin anew again and again.
    void copyTo(SqliteConnection &target, std::chrono::milliseconds pause);
    /// From now on nothing is committed unless the files stand where they stood.
    void guard(const FilePlace &place) { m_place = place; }
    /// From now on statements wait for nobody, and those of a transaction work for a moment at most: then
    /// they throw TransactionHindered.
    void haste();

    bool keepsHouse() override { return true; } // which costs little to do twice
    std::int64_t size() override;

private:
    explicit SqliteConnection(sqlite3 *session) : m_session(session) {}
    std::int64_t pragma(const char *sql);
    std::unique_ptr<Statement> prepare(std::string_view sql) override;

    sqlite3 *m_session = nullptr;
    std::function<bool()> m_waitGoesOn;
    std::optional<FilePlace> m_place;
    int m_haste = 0; // what is left of the moment
};

} // namespace tarvex::store
