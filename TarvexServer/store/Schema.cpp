#include "Schema.h"

#include "StoreError.h"

#include <soci/soci.h>
#include <string>

namespace tarvex::store {

namespace {

void runStatements(soci::session &session, std::string_view script)
{
    for (auto end = script.find(';'); end != std::string_view::npos; end = script.find(';')) {
        session << std::string(script.substr(0, end));
        script.remove_prefix(end + 1);
    }
}

long long currentVersion(soci::session &session)
{
    session << "CREATE TABLE IF NOT EXISTS schema_version (version BIGINT NOT NULL)";
    long long version = 0;
    session << "SELECT version FROM schema_version", soci::into(version);
    if (!session.got_data())
        session << "INSERT INTO schema_version (version) VALUES (0)";
    return version;
}

} // namespace

void migrate(soci::session &session, const std::vector<std::string_view> &migrations)
{
    session << "BEGIN IMMEDIATE"; // a second process that starts now waits, then finds the work done
    const long long version = currentVersion(session);
    const auto newest = static_cast<long long>(migrations.size());
    if (version > newest) {
        session << "ROLLBACK";
        throw CannotOpen("The database was made by a newer tarvex-server (schema " + std::to_string(version) +
                         ", this one knows " + std::to_string(newest) + ").");
    }
    for (auto next = static_cast<std::size_t>(version); next < migrations.size(); ++next)
        runStatements(session, migrations[next]);
    session << "UPDATE schema_version SET version = :version", soci::use(newest);
    session << "COMMIT";
}

} // namespace tarvex::store
