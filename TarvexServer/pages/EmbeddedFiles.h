#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace tarvex::pages {

/// The files of templates/ with their names.
extern const std::vector<std::pair<std::string_view, std::string_view>> embeddedFiles;

} // namespace tarvex::pages
