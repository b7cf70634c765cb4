#pragma once

#include <string>
#include <string_view>

namespace tarvex::wire {

/// The JSON answer to a create-new-user that made the account.
std::string signUpAccepted();

/// The JSON answer to one that did not; the client shows the message as it stands. Characters beyond ASCII
/// stay UTF-8: the client's codec does not join the halves of a surrogate escape.
std::string signUpRefused(std::string_view message);

} // namespace tarvex::wire
