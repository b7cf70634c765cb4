#pragma once

#include "Answer.h"
#include "Connection.h"
#include "KeyedHash.h"
#include "SignUpForm.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarvex::requests {

/// What is wrong with a sign-up as far as its texts tell, as the answer to it; nothing if they are in order.
std::optional<Answer> signUpFault(const wire::SignUpForm &form);

/// Makes the account with its areas and its one set, or refuses because the e-mail address has one already.
Answer signUp(store::Connection &connection, const wire::SignUpForm &form, const std::string &passwordHash,
              const security::KeyedHash &hash, std::int64_t now);

/// What the account's password will be checked against. Takes its time.
std::string newPasswordHash(const wire::SignUpForm &form);

/// The refusal for an e-mail address that has an account already, or nothing.
std::optional<Answer> duplicateFault(store::Connection &connection, const wire::SignUpForm &form,
                                     const security::KeyedHash &hash);

} // namespace tarvex::requests
