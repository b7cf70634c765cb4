#pragma once

#include "KeyedHash.h"

#include <filesystem>

namespace tarvex::security {

/// The key in a file that only its owner can read; one is made at random and written there first if there is
/// no such file, and of several processes that do so at once all get the same. Throws std::runtime_error with
/// a sentence for whoever starts the server.
KeyedHash::Key installationKey(const std::filesystem::path &file);

} // namespace tarvex::security
