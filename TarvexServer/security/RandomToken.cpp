#include "RandomToken.h"

#include <array>
#include <sodium.h>
#include <stdexcept>

namespace tarvex::security {

std::string randomToken()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    std::array<char, 2 * bytes.size() + 1> digits{};
    return sodium_bin2hex(digits.data(), digits.size(), bytes.data(), bytes.size());
}

} // namespace tarvex::security
