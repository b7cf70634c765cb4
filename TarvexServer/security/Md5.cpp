#include "Md5.h"

#include <algorithm>
#include <array>
#include <openssl/evp.h>
#include <stdexcept>

namespace tarvex::security {

constexpr std::string_view hexDigits = "0123456789ABCDEF";
constexpr std::size_t digestSize = 16;

std::string signInDigest(std::string_view text)
{
    const std::string_view hashed = text.substr(0, text.find('\0'));
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    if (EVP_Digest(hashed.data(), hashed.size(), digest.data(), nullptr, EVP_md5(), nullptr) != 1)
        throw std::runtime_error("the cryptographic library refuses MD5");
    std::string hex;
    for (std::size_t i = 0; i < digestSize; ++i) {
        hex += hexDigits[digest[i] >> 4U];
        hex += hexDigits[digest[i] & 0xFU];
    }
    return hex;
}

bool isSignInDigest(std::string_view text)
{
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); };
    return text.size() == 2 * digestSize && std::all_of(text.begin(), text.end(), isDigit);
}

} // namespace tarvex::security
