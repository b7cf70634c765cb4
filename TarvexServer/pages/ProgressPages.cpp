#include "Progress.h"

#include "Days.h"
#include "ProgressChart.h"
#include "Site.h"
#include "WheelParts.h"

#include <algorithm>

namespace tarvex::pages {

namespace {

constexpr std::size_t mostRows = 40; ///< of the table beneath the chart
constexpr std::array<std::pair<std::int64_t, const char *>, 4> spans = {
    {{31, "a month"}, {92, "three months"}, {366, "a year"}, {3653, "ten years"}}};
constexpr std::size_t usualSpan = 1;

Values spanChoices(std::int64_t days)
{
    Values list(Values::type::list);
    for (const auto &[span, name] : spans) {
        Values choice;
        choice.set("days", std::to_string(span));
        choice.set("name", name);
        choice.set("selected", span == days);
        list.push_back(choice);
    }
    return list;
}

std::int64_t spanIn(const PageForm &query)
{
    const auto days = idIn(query, "days");
    const bool isKnown =
        std::any_of(spans.begin(), spans.end(), [&](const auto &span) { return span.first == days; });
    return isKnown ? *days : spans.at(usualSpan).first;
}

std::string chartOf(const std::string &setName, const std::vector<store::Area> &areas,
                    const std::vector<store::DayOfAreas> &days, std::int64_t firstDay, std::int64_t lastDay)
{
    ProgressChart chart{.id = "progress",
                        .title = "Progress of " + setName,
                        .areas = {},
                        .firstDay = firstDay,
                        .lastDay = lastDay,
                        .days = days};
    for (std::size_t i = 0; i < sliceCount && i < areas.size(); ++i)
        chart.areas.at(i) = {.name = areas[i].name, .color = std::string(sliceColors.at(i))};
    return svgOf(chart);
}

Values numberValues(const store::OfAreas &numbers)
{
    Values list(Values::type::list);
    for (const std::int32_t number : numbers)
        list.push_back(Values("number", std::to_string(number)));
    return list;
}

/// The days of the table, the last first: all of them, or so many spread evenly.
Values rowValues(const std::vector<store::DayOfAreas> &days)
{
    Values rows(Values::type::list);
    const std::size_t count = std::min(days.size(), mostRows);
    for (std::size_t i = count; i-- > 0;) {
        const auto &day = days[count < 2 ? i : i * (days.size() - 1) / (count - 1)];
        Values row;
        row.set("day", textOfDay(day.day));
        row.set("average", std::to_string(averageOf(day.numbers)));
        row.set("percents", numberValues(day.numbers));
        rows.push_back(row);
    }
    return rows;
}

Values areaNames(const std::vector<store::Area> &areas)
{
    Values list(Values::type::list);
    for (std::size_t i = 0; i < areas.size(); ++i) {
        Values area;
        area.set("index", std::to_string(i + 1));
        area.set("area", areas[i].name);
        list.push_back(area);
    }
    return list;
}

/// One of two wheels that are compared.
struct Side
{
    std::string name;
    const store::Set *set = nullptr;
    std::int64_t day = 0;
    std::optional<store::DayOfAreas> values = {};
    std::optional<store::DayOfAreas> percents = {};
};

Values sideValues(const Side &side, const std::vector<store::Set> &sets,
                  const std::vector<store::Area> &areas)
{
    Values values;
    values.set("name", side.name);
    values.set("sets", choices(sets, side.set->id));
    values.set("setName", side.set->name);
    values.set("day", textOfDay(side.day));
    if (side.values && side.percents) {
        values.set("picture", wheelPicture("Wheel of " + side.set->name + " on " + textOfDay(side.day),
                                           slicesOf(areas, side.values->numbers, side.percents->numbers)));
        values.set("average", std::to_string(averageOf(side.percents->numbers)));
    }
    return values;
}

std::string textOf(const std::optional<store::DayOfAreas> &day, std::size_t index, const char *unit)
{
    return day ? std::to_string(day->numbers.at(index)) + unit : "–";
}

Values differenceValues(const Side &left, const Side &right, const std::vector<store::Area> &areas)
{
    Values list(Values::type::list);
    for (std::size_t i = 0; i < sliceCount && i < areas.size(); ++i) {
        Values row;
        row.set("number", std::to_string(i + 1));
        row.set("name", areas[i].name);
        row.set("firstValue", textOf(left.values, i, ""));
        row.set("firstPercent", textOf(left.percents, i, "%"));
        row.set("secondValue", textOf(right.values, i, ""));
        row.set("secondPercent", textOf(right.percents, i, "%"));
        list.push_back(row);
    }
    return list;
}

} // namespace

void Site::showProgress(Visit &visit)
{
    const std::int64_t span = spanIn(visit.query);
    const std::int64_t today = store::dayOf(m_clocks.seconds());
    const std::int64_t firstDay = today - span + 1;
    std::vector<store::Set> sets;
    std::vector<store::Area> areas;
    std::vector<store::DayOfAreas> days;
    const store::Set *set = nullptr;
    if (!readAs(visit, [&](store::Connection &connection) {
            const std::int64_t accountId = visit.session->accountId;
            sets = typedSets(connection, accountId);
            areas = typedAreas(connection, accountId);
            set = chosen(sets, setIn(visit.query, "set"));
            if (set != nullptr)
                days = store::setProgress(connection, accountId, set->id, firstDay, today);
        }))
        return;
    if (set == nullptr) {
        showNoSet(visit, /*hasOthers=*/!sets.empty());
        return;
    }
    Values values;
    values.set("sets", choices(sets, set->id));
    values.set("spans", spanChoices(span));
    values.set("set", std::to_string(set->id));
    values.set("setName", set->name);
    values.set("chart", chartOf(set->name, areas, days, firstDay, today));
    values.set("areas", areaNames(areas));
    values.set("rows", rowValues(days));
    values.set("firstDay", textOfDay(days.empty() ? today : std::max(days.front().day, firstDay)));
    values.set("today", textOfDay(today));
    if (days.size() > mostRows)
        values.set("thinned", std::to_string(days.size()));
    show(visit, "progress", std::move(values));
    keepPage(visit);
}

void Site::showComparison(Visit &visit)
{
    const std::int64_t today = store::dayOf(m_clocks.seconds());
    std::vector<store::Set> sets;
    std::vector<store::Area> areas;
    std::array<Side, 2> sides = {Side{.name = "first"}, Side{.name = "second"}};
    if (!readAs(visit, [&](store::Connection &connection) {
            const std::int64_t accountId = visit.session->accountId;
            sets = typedSets(connection, accountId);
            areas = typedAreas(connection, accountId);
            for (Side &side : sides) {
                side.set = chosen(sets, setIn(visit.query, side.name));
                const auto day = visit.query.field(side.name + "-day").value_or("");
                side.day = std::min(today, dayOfText(day).value_or(today));
                if (side.set == nullptr)
                    return;
                side.values = store::valuesOn(connection, accountId, side.day);
                side.percents = store::percentsOn(connection, accountId, side.set->id, side.day);
            }
        }))
        return;
    if (sides[0].set == nullptr || sides[1].set == nullptr) {
        showNoSet(visit, /*hasOthers=*/!sets.empty());
        return;
    }
    Values both(Values::type::list);
    for (const Side &side : sides)
        both.push_back(sideValues(side, sets, areas));
    Values values;
    values.set("sides", both);
    values.set("today", textOfDay(today));
    values.set("areas", differenceValues(sides[0], sides[1], areas));
    show(visit, "compare", std::move(values));
}

} // namespace tarvex::pages
