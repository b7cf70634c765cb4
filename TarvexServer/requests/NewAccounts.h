#pragma once

#include "Accounts.h"
#include "KeyedHash.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex::requests {

/// What an account is found by: its login as typed and in lower case, under the hash of the installation.
std::vector<std::string> loginKeys(const security::KeyedHash &hash, std::string_view login);

/// What the account's password will be checked against. Takes its time.
std::string newPasswordHash(std::string_view password);

/// An account as it begins: eight named areas of value 0. The first set comes separately.
store::NewAccount newAccount(std::vector<std::string> logins, const std::string &name,
                             const std::string &passwordHash, std::int64_t now);

/// Makes the account and its first set; nothing if one of its logins is taken.
std::optional<std::int64_t> createWithSet(store::Connection &connection, const store::NewAccount &account);

} // namespace tarvex::requests
