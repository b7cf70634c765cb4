#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace tarvex::store {

class EngineSession;

/// The files of schema/, in the order of their names; the first makes version 1 of the schema.
extern const std::vector<std::string_view> sqliteMigrations;
extern const std::vector<std::string_view> postgresqlMigrations;

/// Brings a database up to the last of the migrations in one transaction and keeps the version
/// in the table schema_version. Before it changes one that has a schema already, and while nobody else can,
/// it calls `beforeChange`. Throws CannotOpen if the database is of a newer version than the migrations.
void migrate(
    EngineSession &session, const std::vector<std::string_view> &migrations,
    const std::function<void()> &beforeChange = [] {});

} // namespace tarvex::store
