#pragma once

#include "Connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex::store {

/// What a sign-in is checked against. The version grows whenever a password or the account itself changes, so
/// that whoever remembers a check knows when it is out of date; the changes are those of all that the account
/// has, for whoever remembers an answer.
struct Credentials
{
    std::int64_t accountId = 0;
    std::int64_t version = 0;
    std::int64_t changes = 0;
    std::string passwordHash;
};

struct NewArea
{
    std::string name;
    std::string color;
    std::int32_t value = 0;
};

struct NewAccount
{
    std::vector<std::string> logins; ///< all that the account is found by, without doubles
    std::string name;
    std::string passwordHash;
    std::vector<NewArea> areas; ///< get the ids 1, 2 ... in this order
    std::int64_t createdAt = 0; ///< seconds since 1970
};

std::optional<Credentials> findCredentials(Connection &connection, std::string_view login);

/// Counts a change, which goes for every transaction that made one but for signing up.
void countChange(Connection &connection, std::int64_t accountId);

std::int64_t countAccounts(Connection &connection);

/// The new account's id, or nothing if one of its logins is taken.
std::optional<std::int64_t> createAccount(Connection &connection, const NewAccount &account);

} // namespace tarvex::store
