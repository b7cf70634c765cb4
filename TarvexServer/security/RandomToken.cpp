#include "RandomToken.h"

#include "Sodium.h"

#include <array>

namespace tarvex::security {

std::string randomToken()
{
    startLibrary();
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    std::array<char, 2 * bytes.size() + 1> digits{};
    return sodium_bin2hex(digits.data(), digits.size(), bytes.data(), bytes.size());
}

} // namespace tarvex::security
