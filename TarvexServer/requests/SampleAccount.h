#pragma once

#include "Database.h"
#include "KeyedHash.h"

#include <string_view>

namespace tarvex::requests {

constexpr std::string_view sampleLogin = "sample@example.org";
constexpr std::string_view samplePassword = "wheel of life";

/// Makes the account that shows a new user what the wheel is for. Returns false if it is there already, in
/// which case nothing of it is touched.
bool createSampleAccount(store::Database &database, const security::KeyedHash &hash);

} // namespace tarvex::requests
