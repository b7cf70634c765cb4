#pragma once

#include <string>
#include <string_view>

namespace tarvex::security {

/// The digest a client signs in with: MD5 (RFC 1321) of the bytes before the first zero byte, as 32
/// upper-case hexadecimal digits. It is the protocol's stand-in for the text, not a protection of it.
std::string signInDigest(std::string_view text);

/// Whether a text has the form of such a digest.
bool isSignInDigest(std::string_view text);

} // namespace tarvex::security
