#pragma once

#include "Connection.h"

#include <functional>
#include <string>

namespace tarvex::store {

/// A session with an engine, in and between transactions. All but rollBack() throw TransactionFailed, in
/// words that carry no values.
class EngineSession : public Connection
{
public:
    virtual void beginReading() = 0;
    /// Begins anew with the engine if the session was lost.
    virtual void beginWriting() = 0;
    /// Waits for what was put off, which else would fail only at the commit.
    virtual void settle() = 0;
    /// Once it returns, what was written is safe. When it throws, nothing of it stays, unless the words say
    /// otherwise.
    virtual void commit() = 0;
    /// Ends a transaction that failed, unless the engine has done so by itself.
    virtual void rollBack() noexcept = 0;

    /// Runs statements that are not kept: what opens a session, makes tables.
    virtual void execute(const std::string &script) = 0;
    /// The one number that a query brings; 0 without a row.
    virtual std::int64_t numberOf(const std::string &query) = 0;

    /// From now on the session waits, for another process that holds the database or for a database that is
    /// away, for as long as this says so; it is asked every few milliseconds, and before the first.
    virtual void waitWhile(std::function<bool()> goesOn) = 0;
};

} // namespace tarvex::store
