#pragma once

#include "Connection.h"

#include <filesystem>
#include <functional>
#include <sqlite3.h>
#include <string>

namespace tarvex::store {

/// A session with a database file of SQLite. Throws TransactionFailed, in the engine's words, which carry no
/// values.
class SqliteConnection : public Connection
{
public:
    /// The file must be there.
    explicit SqliteConnection(const std::filesystem::path &file);
    ~SqliteConnection() override;

    /// Runs statements that are not kept: what opens a session, begins and ends transactions, makes tables.
    void execute(const std::string &script);
    /// The one number that a query brings; 0 without a row.
    std::int64_t numberOf(const std::string &query);
    /// Has every change go to a log beside the file first, which readers need not wait for. Throws
    /// TransactionFailed where that cannot be, as on the file systems of some networks.
    void useLog();
    /// Ends a transaction that failed, unless the engine has done so by itself.
    void rollBack() noexcept;

    std::int64_t version() override;
    std::int64_t size() override;

    /// From now on a statement waits for another process that holds the file for as long as this says so; it
    /// is asked every few milliseconds, and before the first.
    void waitWhile(std::function<bool()> goesOn);

    /// From now on statements wait for nobody and work for a moment at most: then they throw
    /// TransactionHindered. A moment is what a few hundred goals take, and begins with each call.
    void beginHaste();

private:
    std::int64_t pragma(const char *sql);
    std::unique_ptr<Statement> prepare(std::string_view sql) override;

    sqlite3 *m_session = nullptr;
    std::function<bool()> m_waitGoesOn;
    int m_haste = 0; // what is left of the moment
};

} // namespace tarvex::store
