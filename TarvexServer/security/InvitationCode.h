#pragma once

#include <string>
#include <string_view>

namespace tarvex::security {

/// A code that nobody guesses, of characters that nobody mistakes for one another, in groups.
std::string newInvitationCode();

/// The code that a text ends with, in whatever case and groups it was typed; empty if there is none.
std::string_view trailingInvitationCode(std::string_view text);

/// What a code can be recognised by and not be learned from, the same however it was typed.
std::string invitationHash(std::string_view code);

} // namespace tarvex::security
