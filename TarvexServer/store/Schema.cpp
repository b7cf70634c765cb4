#include "Schema.h"

#include "EngineSession.h"
#include "StoreError.h"

#include <string>

namespace tarvex::store {

void migrate(EngineSession &session, const std::vector<std::string_view> &migrations,
             const std::function<void()> &beforeChange)
{
    session.beginWriting(); // a second process that starts now waits, then finds the work done
    session.execute("CREATE TABLE IF NOT EXISTS schema_version (version BIGINT NOT NULL)");
    const std::int64_t version = session.numberOf("SELECT version FROM schema_version");
    const auto newest = static_cast<std::int64_t>(migrations.size());
    if (version > newest)
        throw CannotOpen("The database was made by a newer tarvex-server (schema " + std::to_string(version) +
                         ", this one knows " + std::to_string(newest) + ").");
    if (version > 0 && version < newest)
        beforeChange();
    for (auto next = static_cast<std::size_t>(version); next < migrations.size(); ++next)
        session.execute(std::string(migrations[next]));
    session.execute("DELETE FROM schema_version");
    session.execute("INSERT INTO schema_version (version) VALUES (" + std::to_string(newest) + ")");
    session.commit();
}

} // namespace tarvex::store
