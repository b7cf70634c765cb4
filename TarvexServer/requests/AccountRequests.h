#pragma once

#include "Answer.h"
#include "Connection.h"
#include "KeyedHash.h"
#include "SignUpForm.h"
#include "SignUpRules.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarvex::requests {

/// Reads a sign-up. By invitation the code is taken from the name that it was typed behind.
std::optional<wire::SignUpForm> readSignUp(std::string_view body, const SignUpRules &rules);

/// What is wrong with a sign-up as far as its texts tell, as the answer to it; nothing if they are in order.
std::optional<Answer> signUpFault(const wire::SignUpForm &form, const SignUpRules &rules);

/// The refusal for a code that invites nobody, an e-mail address that has an account already or one account
/// too many, or nothing.
std::optional<Answer> accountFault(store::Connection &connection, const wire::SignUpForm &form,
                                   const SignUpRules &rules, const security::KeyedHash &hash,
                                   std::int64_t now);

/// Makes the account with its areas and its one set and uses its invitation up, or refuses like the above.
Answer signUp(store::Connection &connection, const wire::SignUpForm &form, const SignUpRules &rules,
              const std::string &passwordHash, const security::KeyedHash &hash, std::int64_t now);

} // namespace tarvex::requests
