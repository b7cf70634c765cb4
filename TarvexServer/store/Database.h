#pragma once

#include "Connection.h"
#include "StoreError.h"

#include <functional>
#include <memory>
#include <string>

namespace tarvex::store {

/// One database, open for many threads.
///
/// All access goes through the two functions below, each one transaction. A write that returns is on disk;
/// one that throws has left nothing behind. Work handed in must have no effect outside the database: later
/// engines may run it again, or together with others' work under one commit.
class Database
{
public:
    /// Opens the database at the URL, making file, missing parent folders and schema as needed.
    /// Throws CannotOpen.
    explicit Database(const std::string &url);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// Runs the work in a read-only transaction, in parallel with others. Throws TransactionFailed.
    void read(const std::function<void(Connection &)> &work);

    /// Runs the work in the one writing transaction of the moment. Throws TransactionFailed.
    void write(const std::function<void(Connection &)> &work);

private:
    struct Sessions;
    std::unique_ptr<Sessions> m_sessions;
};

} // namespace tarvex::store
