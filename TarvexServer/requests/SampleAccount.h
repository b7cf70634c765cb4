#pragma once

#include "Database.h"
#include "KeyedHash.h"

#include <ctime>
#include <string_view>

namespace tarvex::requests {

constexpr std::string_view sampleLogin = "sample@example.org";
constexpr std::string_view samplePassword = "wheel of life";

/// Makes the account that shows a new user what the wheel is for: a year of sets, the last of today. Returns
/// false if it is there already, in which case nothing of it is touched. Anybody knows its password: where
/// there are other accounts, it is made only if that is wanted, and std::runtime_error is thrown with a
/// sentence otherwise.
bool createSampleAccount(store::Database &database, const security::KeyedHash &hash, bool besideOthers,
                         std::time_t now);

} // namespace tarvex::requests
