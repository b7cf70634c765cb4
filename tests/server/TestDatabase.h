#pragma once

#include "PostgresConnection.h"
#include "SqliteConnection.h"
#include "TemporaryFolder.h"

#include <cstdlib>
#include <string>

/// The PostgreSQL server that the tests run on instead of SQLite, if there is one.
inline const char *const testServer = std::getenv("TARVEX_TEST_POSTGRESQL");

/// A database of the folder's own: its file, or a schema of its name.
inline std::string databaseUrl(const TemporaryFolder &folder)
{
    if (testServer == nullptr)
        return "sqlite:" + (folder.path() / "wheel.db").string();
    const std::string schema = folder.path().filename().string();
    tarvex::store::PostgresConnection(testServer).execute("CREATE SCHEMA IF NOT EXISTS \"" + schema + "\"");
    return testServer + ("&options=-csearch_path%3D%22" + schema + "%22");
}

/// A session there of somebody else.
inline std::unique_ptr<tarvex::store::EngineSession> anotherSession(const TemporaryFolder &folder)
{
    if (testServer == nullptr)
        return std::make_unique<tarvex::store::SqliteConnection>(folder.path() / "wheel.db");
    return std::make_unique<tarvex::store::PostgresConnection>(databaseUrl(folder));
}
