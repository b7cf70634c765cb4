#pragma once

#include "EmbeddedFiles.h"

#include <kainjow/mustache.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace tarvex::pages {

using Values = kainjow::mustache::data;

/// The page that a template, by the name of its file, makes of the values, between the head and the foot that
/// all pages have. Values are escaped but where the template asks for markup.
std::string page(std::string_view name, const Values &values);

/// The text as it stands in HTML and SVG, escaped as values are.
std::string markup(const std::string &text);

/// The style sheet, and a mark that is another one whenever it is.
std::string_view styleSheet();
const std::string &styleMark();

std::string_view icon();

std::optional<std::string_view> fileOf(const EmbeddedFiles &files, std::string_view name);

} // namespace tarvex::pages
