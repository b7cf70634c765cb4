#pragma once

#include "Areas.h"
#include "PageForm.h"
#include "Sets.h"
#include "Templates.h"
#include "WheelPicture.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvex::pages {

// What the pages that show wheels have in common. Names are what was typed.

/// The id in a field; nothing if it holds none.
std::optional<std::int64_t> idIn(const PageForm &form, std::string_view name);
/// The id of the set in a field: nothing if there is no such field, and that of no set if it holds no id.
std::optional<std::int64_t> setIn(const PageForm &form, std::string_view name);

std::vector<store::Set> typedSets(store::Connection &connection, std::int64_t accountId);
std::vector<store::Area> typedAreas(store::Connection &connection, std::int64_t accountId);

/// The set with an id, or without one the first, as in the client; null if there is no such set.
const store::Set *chosen(const std::vector<store::Set> &sets, std::optional<std::int64_t> wanted);

/// The sets to choose from, of which one is.
Values choices(const std::vector<store::Set> &sets, std::int64_t selected);

/// The areas with values and percents as the slices of a wheel that lead nowhere.
std::array<Slice, sliceCount> slicesOf(const std::vector<store::Area> &areas,
                                       const std::array<std::int32_t, sliceCount> &values,
                                       const std::array<std::int32_t, sliceCount> &percents);

} // namespace tarvex::pages
