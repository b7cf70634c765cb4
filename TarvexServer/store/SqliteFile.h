#pragma once

#include "SqliteConnection.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace tarvex::store {

/// Marks a file as a database of ours, in the words of the engine: "TVXC".
constexpr int applicationId = 0x54565843;

/// The file that a database URL of the form "sqlite:PATH" names. Throws CannotOpen.
std::filesystem::path sqliteFile(const std::string &url);

/// Whether the database is one of ours: by its mark or, from before there was one, by its tables.
bool isOurs(SqliteConnection &session);

/// A session with a database of ours that is there, which stays of the schema that it has. Throws CannotOpen,
/// whose sentence calls the file by the name of what it is a copy of, if that is given.
std::unique_ptr<SqliteConnection> openAsItIs(const std::filesystem::path &file,
                                             const std::filesystem::path &copyOf = {});

/// The version of its schema; 0 while it has none.
std::int64_t schemaVersion(SqliteConnection &session);

} // namespace tarvex::store
