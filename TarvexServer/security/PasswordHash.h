#pragma once

#include <string>
#include <string_view>

namespace tarvex::security {

/// Argon2id (RFC 9106) of a sign-in digest, with its salt and cost in the text. Takes 19 MiB and some 20 ms;
/// throws std::bad_alloc if the memory cannot be had.
std::string hashPassword(std::string_view digest);

/// Whether the digest is the one the hash was made of; costs as much as making it. An empty hash, of a login
/// nobody has, matches nothing and costs the same. Throws std::bad_alloc like the above.
bool matchesPassword(const std::string &hash, std::string_view digest);

} // namespace tarvex::security
