#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace tarvex::pages {

/// Files that are part of the program, with their names.
using EmbeddedFiles = std::vector<std::pair<std::string_view, std::string_view>>;

extern const EmbeddedFiles templateFiles; ///< those of templates/
extern const EmbeddedFiles manualFiles;   ///< the user's manual

} // namespace tarvex::pages
