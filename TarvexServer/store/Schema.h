#pragma once

#include <string_view>
#include <vector>

namespace tarvex::store {

class SqliteConnection;

/// The files of schema/, in the order of their names; the first makes version 1 of the schema.
extern const std::vector<std::string_view> sqliteMigrations;
extern const std::vector<std::string_view> postgresqlMigrations;

/// Brings a database up to the last of the migrations in one transaction and keeps the version
/// in the table schema_version. Throws CannotOpen if the database is of a newer version than the migrations.
void migrate(SqliteConnection &session, const std::vector<std::string_view> &migrations);

} // namespace tarvex::store
