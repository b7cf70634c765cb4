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
    std::int64_t seenOn = 0;  ///< the day of noteSeen()
    std::string passwordHash; ///< empty, which no password matches, while the account is disabled or closed
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

/// The account of a login, closed or not.
std::optional<std::int64_t> accountOf(Connection &connection, std::string_view login);

std::optional<Credentials> findCredentials(Connection &connection, std::string_view login);
std::optional<Credentials> credentialsOf(Connection &connection, std::int64_t accountId);

/// The same for whoever asks for something else before it looks at them.
class AwaitedCredentials
{
public:
    AwaitedCredentials(Connection &connection, std::int64_t accountId);
    std::optional<Credentials> get();

private:
    Rows m_rows;
};

/// Counts a change, which goes for every transaction that makes one but for signing up. To be done first:
/// from then on no other transaction changes the account.
void countChange(Connection &connection, std::int64_t accountId);

/// Notes the day, counted from 1970, on which a password of the account was found right.
void noteSeen(Connection &connection, std::int64_t accountId, std::int64_t day);

/// Both tell whether there is such an account. Whoever is signed in has to do so anew.
bool setPasswordHash(Connection &connection, std::int64_t accountId, const std::string &passwordHash);
bool setDisabled(Connection &connection, std::int64_t accountId, bool isDisabled);

/// The name that was typed at sign-up; nothing if there is no such account.
std::optional<std::string> accountName(Connection &connection, std::int64_t accountId);

std::int64_t countAccounts(Connection &connection);

/// The new account's id, or nothing if one of its logins is taken.
std::optional<std::int64_t> createAccount(Connection &connection, const NewAccount &account);

} // namespace tarvex::store
