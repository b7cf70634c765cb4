#include "RandomToken.h"

#include "Sodium.h"

namespace tarvex::security {

std::string randomToken()
{
    startLibrary();
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    return hexadecimal(bytes);
}

} // namespace tarvex::security
