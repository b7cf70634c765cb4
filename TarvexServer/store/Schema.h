#pragma once

#include <string_view>
#include <vector>

namespace soci {
class session;
}

namespace tarvex::store {

/// Brings a database up to the last of the migrations in one transaction and keeps the version
/// in the table schema_version. Throws CannotOpen if the database is of a newer version than the migrations.
void migrate(soci::session &session, const std::vector<std::string_view> &migrations);

} // namespace tarvex::store
