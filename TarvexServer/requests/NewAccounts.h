#pragma once

#include "Accounts.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex::requests {

/// The digests an account can be signed in to with: that of the login as typed and that of its lower-case
/// form.
std::vector<std::string> loginDigests(std::string_view login);

/// An account as it begins: eight named areas of value 0. The first set comes separately.
store::NewAccount newAccount(std::string_view login, const std::string &name, const std::string &passwordHash,
                             std::int64_t now);

} // namespace tarvex::requests
