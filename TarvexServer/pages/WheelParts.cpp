#include "WheelParts.h"

#include "Decimal.h"
#include "WireText.h"

#include <algorithm>

namespace tarvex::pages {

std::optional<std::int64_t> idIn(const PageForm &form, std::string_view name)
{
    return wire::wireId(form.field(name).value_or(""));
}

std::optional<std::int64_t> setIn(const PageForm &form, std::string_view name)
{
    return form.fields(name).empty() ? std::nullopt : std::optional(idIn(form, name).value_or(-1));
}

std::vector<store::Set> typedSets(store::Connection &connection, std::int64_t accountId)
{
    auto sets = store::sets(connection, accountId);
    for (store::Set &set : sets)
        set.name = wire::unescaped(set.name);
    return sets;
}

std::vector<store::Area> typedAreas(store::Connection &connection, std::int64_t accountId)
{
    auto areas = store::areas(connection, accountId);
    for (store::Area &area : areas)
        area.name = wire::unescaped(area.name);
    return areas;
}

const store::Set *chosen(const std::vector<store::Set> &sets, std::optional<std::int64_t> wanted)
{
    const auto found = std::find_if(sets.begin(), sets.end(),
                                    [&](const store::Set &set) { return set.id == wanted.value_or(set.id); });
    return found == sets.end() ? nullptr : &*found;
}

Values choices(const std::vector<store::Set> &sets, std::int64_t selected)
{
    Values list(Values::type::list);
    for (const store::Set &set : sets) {
        Values choice;
        choice.set("id", std::to_string(set.id));
        choice.set("name", set.name);
        choice.set("selected", set.id == selected);
        list.push_back(choice);
    }
    return list;
}

std::array<Slice, sliceCount> slicesOf(const std::vector<store::Area> &areas,
                                       const std::array<std::int32_t, sliceCount> &values,
                                       const std::array<std::int32_t, sliceCount> &percents)
{
    std::array<Slice, sliceCount> slices;
    for (std::size_t i = 0; i < sliceCount && i < areas.size(); ++i)
        slices.at(i) = {.value = values.at(i),
                        .percent = percents.at(i),
                        .words = areas[i].name + ": value " + std::to_string(values.at(i)) + ", " +
                                 std::to_string(percents.at(i)) + " percent of its goals done",
                        .link = ""};
    return slices;
}

} // namespace tarvex::pages
