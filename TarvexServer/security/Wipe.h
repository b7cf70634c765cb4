#pragma once

#include <cstddef>
#include <sodium.h>
#include <string>

namespace tarvex::security {

/// Overwrites what is needed no more in a way that no compiler takes for idle.
inline void wipe(void *begin, std::size_t size)
{
    sodium_memzero(begin, size);
}

/// The same for a text, which is empty then.
inline void wipe(std::string &secret)
{
    wipe(secret.data(), secret.size());
    secret.clear();
}

} // namespace tarvex::security
