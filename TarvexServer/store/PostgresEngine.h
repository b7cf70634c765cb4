#pragma once

#include "Engine.h"
#include "Room.h"

#include <string>

namespace tarvex::store {

/// PostgreSQL: a server elsewhere, which several processes may share.
class PostgresEngine : public Engine
{
public:
    /// Whether a URL is one of libpq's.
    static bool isUrl(const std::string &url);

    /// Of the room only the size of the database counts: the disk is another machine's.
    PostgresEngine(std::string url, const Room &room) : m_url(std::move(url)), m_room(room) {}

    /// Makes the schema as needed.
    std::unique_ptr<EngineSession> openWriter() override;
    std::unique_ptr<EngineSession> openReader() override;
    std::unique_ptr<EngineSession> openHastyReader() override { return nullptr; }
    void requireRoom(Connection &connection) const override;

private:
    std::string m_url;
    Room m_room;
};

} // namespace tarvex::store
