#pragma once

#include "AccountList.h"
#include "Accounts.h"
#include "Database.h"
#include "KeyedHash.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvex::requests {

// What an operator does with accounts, be it while a service runs on the same database. All throw
// AccountProblem, or what Database throws.

/// It cannot be done; what() is a sentence for the operator.
class AccountProblem : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The texts of an account that is to be made, as they were typed.
struct AccountTexts
{
    std::string login;
    std::string password;
    std::string name;
};

/// An account with these texts, which must be such as signing up takes. `now` is in seconds since 1970.
store::NewAccount newAccountOf(const security::KeyedHash &hash, const AccountTexts &texts, std::int64_t now);

/// The id of an account that was to be made, unless its login is taken.
std::int64_t requireNew(std::optional<std::int64_t> accountId);

/// Makes an account with the eight areas and one set, and returns its id.
std::int64_t createAccount(store::Database &database, const security::KeyedHash &hash,
                           const AccountTexts &texts, std::int64_t now);

/// The id of the account with this login, in the spelling of its sign-up or any other.
std::int64_t accountOfLogin(store::Database &database, const security::KeyedHash &hash,
                            std::string_view login);

store::AccountOverview overviewOf(store::Database &database, std::int64_t accountId);

/// Tells of every account, one after the other.
void eachOverview(store::Database &database, const std::function<void(const store::AccountOverview &)> &told);

/// From now on this password counts and none before it.
void setPassword(store::Database &database, std::int64_t accountId, std::string_view password);

/// Nobody can sign in while an account is disabled; all that it holds stays.
void setDisabled(store::Database &database, std::int64_t accountId, bool isDisabled);

/// Removes an account with all that it ever held. What is begun and interrupted goes on by calling it again.
/// Tells whether nothing is left in the log of the database either.
bool removeAccount(store::Database &database, std::int64_t accountId);

} // namespace tarvex::requests
