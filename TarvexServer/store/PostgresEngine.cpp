#include "PostgresEngine.h"

#include "PostgresConnection.h"
#include "Schema.h"
#include "StoreError.h"

namespace tarvex::store {

namespace {

/// Refuses a database that could not hold every text, or would not know what it holds.
void requireUnicode(PostgresConnection &session)
{
    Rows found = session.rows("SHOW server_encoding");
    found.next();
    if (found.text(0) != "UTF8")
        throw CannotOpen("The encoding of the database is " + std::string(found.text(0)) +
                         "; make one whose encoding is UTF8.");
}

/// Refuses the schema of another program: one that holds tables, but not ours.
void claim(PostgresConnection &session)
{
    const auto count = [&](const std::string &whose) {
        return session.numberOf("SELECT COUNT(*) FROM pg_tables WHERE schemaname = current_schema()" + whose);
    };
    if (count("") > 0 && count(" AND tablename IN ('schema_version', 'account', 'goal_set')") < 3)
        throw CannotOpen("The schema of the database holds the tables of another program.");
}

/// One process at a time, until its session ends.
void makeSchema(PostgresConnection &session)
{
    session.execute("SET lock_timeout = 0; SET statement_timeout = 0;"
                    " SELECT pg_advisory_lock(1956270711)");
    requireUnicode(session);
    claim(session);
    migrate(session, postgresqlMigrations);
}

} // namespace

bool PostgresEngine::isUrl(const std::string &url)
{
    return url.starts_with("postgresql://") || url.starts_with("postgres://");
}

std::unique_ptr<EngineSession> PostgresEngine::openWriter()
{
    {
        PostgresConnection session(m_url);
        makeSchema(session);
    }
    auto writer = std::make_unique<PostgresConnection>(m_url);
    writer->leaveMarks();
    return writer;
}

std::unique_ptr<EngineSession> PostgresEngine::openReader()
{
    return std::make_unique<PostgresConnection>(m_url);
}

void PostgresEngine::requireRoom(Connection &connection) const
{
    if (static_cast<std::uintmax_t>(connection.size()) >= m_room.largest)
        throw NoRoom("the database is as large as it may be");
}

} // namespace tarvex::store
