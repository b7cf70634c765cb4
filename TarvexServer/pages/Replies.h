#pragma once

#include "Answer.h"
#include "PageTypes.h"

#include <string>
#include <string_view>

namespace tarvex::pages {

/// A page, of which nobody keeps a copy.
Reply htmlReply(unsigned status, std::string body);
/// Something that is the same for everybody, kept by browsers for so many seconds.
Reply commonReply(std::string_view contentType, std::string body, long seconds);
/// A file to be kept under a name.
Reply fileReply(std::string_view contentType, std::string_view name, std::string body);
/// Has the browser get another address (RFC 9110, 15.4.4), here or, as the operator says, elsewhere.
Reply redirect(std::string_view address);

/// Why a password was not taken: the sentence given if it is wrong, or that it could not be looked at.
const char *problemOf(requests::Outcome outcome, const char *ifWrong);
/// The status of the page that says so, or why a sign-up was not taken.
unsigned statusOf(requests::Outcome outcome);

/// What the browser is to hold from now on, nothing if that is empty.
std::string cookieField(std::string_view value, bool isEncrypted);
/// The name of that.
std::string_view cookieName(bool isEncrypted);

} // namespace tarvex::pages
