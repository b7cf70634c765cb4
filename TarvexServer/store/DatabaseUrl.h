#pragma once

#include <filesystem>
#include <string>

namespace tarvex::store {

/// The file that a database URL of the form "sqlite:PATH" names.
/// Throws CannotOpen with a sentence for the user if the URL has another form.
std::filesystem::path sqliteFile(const std::string &url);

} // namespace tarvex::store
