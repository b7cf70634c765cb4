#pragma once

#include "Connection.h"
#include "Room.h"
#include "StoreError.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace tarvex::store {

/// One database, open for many threads.
///
/// All access goes through the functions below, each one transaction. A write that returns is on disk; one
/// that throws has left nothing behind. Work handed in must have no effect outside the database that a second
/// run would not have again: it may be run once more, and goes in together with others' work under one
/// commit. What it throws comes back to whoever handed it in.
class Database
{
public:
    using Work = std::function<void(Connection &)>;
    using Written = std::function<void(std::exception_ptr)>;

    /// Opens the database at the URL, making file, missing parent folders and schema as needed; a
    /// file of an older schema is first copied to "<file>.before-schema-N". Throws CannotOpen.
    explicit Database(const std::string &url, const Room &room = {});
    /// Writes first what still waits to be written.
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// Runs the work in a read-only transaction, in parallel with others. Never waits for a write. Throws
    /// TransactionFailed.
    void read(const Work &work);
    /// The same for a thread that must not be held up: gives up, and returns false, if it would take longer
    /// than a moment.
    bool readInAMoment(const Work &work);

    /// Runs the work in a writing transaction and waits until it is on disk. Throws TransactionFailed.
    void write(const Work &work);
    /// The same without waiting; `written` is told on another thread, with what was thrown if anything was.
    void write(Work work, Written written);

    /// Throws NoRoom while there is none. For work that adds; what removes may go on.
    void requireRoom(Connection &connection) const;

    /// The file it is in; empty if it has none of its own.
    std::filesystem::path file() const;

    /// Leaves nothing in the log beside the file, where what was removed still stands for a while. Tells
    /// whether that could be, which somebody who reads for long prevents.
    bool emptyLog();

private:
    struct Sessions;
    std::unique_ptr<Sessions> m_sessions;
};

} // namespace tarvex::store
