#pragma once

#include <string_view>
#include <vector>

namespace tarvex::store {

/// The files of schema/, in the order of their names; the first makes version 1 of the schema.
extern const std::vector<std::string_view> sqliteMigrations;
extern const std::vector<std::string_view> postgresqlMigrations;

} // namespace tarvex::store
