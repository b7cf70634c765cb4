#pragma once

#include <string>

namespace tarvex::security {

/// 256 bits drawn at random, in hexadecimal digits: what nobody guesses.
std::string randomToken();

} // namespace tarvex::security
