#pragma once

#include "Engine.h"
#include "Room.h"
#include "UseLock.h"

#include <optional>
#include <string>

namespace tarvex::store {

/// SQLite: one file, and the engine in this process.
class SqliteEngine : public Engine
{
public:
    /// The URL is of the form "sqlite:PATH".
    SqliteEngine(const std::string &url, const Room &room);

    /// Makes file, missing parent folders and schema as needed.
    std::unique_ptr<EngineSession> openWriter() override;
    std::unique_ptr<EngineSession> openReader() override;
    std::unique_ptr<EngineSession> openHastyReader() override;
    void requireRoom(Connection &connection) const override;
    bool emptyLog() override;
    std::filesystem::path file() const override { return m_file; }

private:
    std::filesystem::path m_file;
    std::filesystem::path m_folder;
    Room m_room;
    std::optional<UseLock> m_inUse; // from the first session on
};

} // namespace tarvex::store
