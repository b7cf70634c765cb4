#pragma once

#include "Database.h"
#include "KeyedHash.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tarvex::requests {

/// The hash under which an installation keeps whatever must not be readable in its database: logins and
/// addresses. Its key comes from the file, which is made for a new database. Throws std::runtime_error, with
/// a sentence for whoever starts the server, if the file is not that of the database.
security::KeyedHash openInstallation(store::Database &database, const std::filesystem::path &secretFile);

/// Whether the file is there and has the secret that the logins of a database are kept under.
bool isSecretOf(store::Connection &connection, const std::filesystem::path &secretFile);

/// What an account is found by, of the digest that is signed in with.
std::string loginKey(const security::KeyedHash &hash, std::string_view digest);

} // namespace tarvex::requests
