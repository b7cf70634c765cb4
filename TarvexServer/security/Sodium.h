#pragma once

#include <array>
#include <sodium.h>
#include <stdexcept>
#include <string>

namespace tarvex::security {

/// To be called before anything else of the library.
inline void startLibrary()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
}

/// The bytes as hexadecimal digits, in lower case.
template<std::size_t size>
std::string hexadecimal(const std::array<unsigned char, size> &bytes)
{
    std::array<char, 2 * size + 1> digits{};
    return sodium_bin2hex(digits.data(), digits.size(), bytes.data(), bytes.size());
}

} // namespace tarvex::security
