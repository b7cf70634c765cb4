#pragma once

#include <cstdint>
#include <filesystem>

namespace tarvex::store {

/// Writes a database anew without what was freed in it, and empties its log. Nobody else may use it
/// meanwhile. Returns the bytes that its files take less than before. Throws MaintenanceFailed or CannotOpen
/// while it is in use or the disk has no room for the work.
std::uintmax_t compactDatabase(const std::filesystem::path &file);

} // namespace tarvex::store
