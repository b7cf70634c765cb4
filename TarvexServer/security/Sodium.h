#pragma once

#include <sodium.h>
#include <stdexcept>

namespace tarvex::security {

/// To be called before anything else of the library.
inline void startLibrary()
{
    if (sodium_init() < 0)
        throw std::runtime_error("the cryptographic library cannot start");
}

} // namespace tarvex::security
