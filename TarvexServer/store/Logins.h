#pragma once

#include "Connection.h"

#include <functional>
#include <string>
#include <string_view>

namespace tarvex::store {

/// Whether the logins are kept under a secret by now.
bool areLoginsKeyed(Connection &connection);

/// What shows that a secret is the one that the logins are kept under; empty before they are.
std::string secretProof(Connection &connection);

/// Puts every login that is kept as the plain digest under a secret, and keeps the secret's proof; if there
/// is a proof already, tells whether it is the same.
bool keyLogins(Connection &connection, const std::string &proof,
               const std::function<std::string(std::string_view)> &keyed);

} // namespace tarvex::store
