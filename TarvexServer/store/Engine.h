#pragma once

#include "EngineSession.h"

#include <filesystem>
#include <memory>

namespace tarvex::store {

/// What keeps a database: where its sessions come from. All functions throw CannotOpen or TransactionFailed.
class Engine
{
public:
    virtual ~Engine() = default;
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;

    /// The session that all writing goes through; the first of all, since it makes the database and its
    /// schema where they are missing.
    virtual std::unique_ptr<EngineSession> openWriter() = 0;
    virtual std::unique_ptr<EngineSession> openReader() = 0;
    /// One whose transactions throw TransactionHindered after a moment, which is what a few hundred goals
    /// take; null where no moment is short enough for the thread of the network.
    virtual std::unique_ptr<EngineSession> openHastyReader() = 0;

    /// Throws NoRoom while there is none for more.
    virtual void requireRoom(Connection &connection) const = 0;
    /// See Database::emptyLog().
    virtual bool emptyLog() { return true; }
    /// The file of the database; empty if it has none of its own.
    virtual std::filesystem::path file() const { return {}; }

protected:
    Engine() = default;
};

} // namespace tarvex::store
