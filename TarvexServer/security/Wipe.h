#pragma once

#include <cstddef>
#include <string>

namespace tarvex::security {

/// Overwrites what is needed no more in a way that no compiler takes for idle.
void wipe(void *begin, std::size_t size);

/// The same for a text, which is empty then.
void wipe(std::string &secret);

} // namespace tarvex::security
