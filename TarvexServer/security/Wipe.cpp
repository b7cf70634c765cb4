#include "Wipe.h"

#include <sodium.h>

namespace tarvex::security {

void wipe(void *begin, std::size_t size)
{
    sodium_memzero(begin, size);
}

void wipe(std::string &secret)
{
    wipe(secret.data(), secret.size());
    secret.clear();
}

} // namespace tarvex::security
