#include "Accounts.h"
#include "Call.h"
#include "Goals.h"
#include "ProgressChart.h"
#include "Replies.h"
#include "Site.h"
#include "WheelParts.h"
#include "WireText.h"

#include <algorithm>

namespace tarvex::pages {

namespace {

/// Goals of an area that are shown among the others; there is a page for all of one.
constexpr std::size_t goalsPerArea = 100;

struct Wheel
{
    std::vector<store::Set> sets;
    std::vector<store::Area> areas;
    const store::Set *set = nullptr;
    std::array<std::vector<store::Goal>, sliceCount> goals = {}; ///< by area
};

Wheel wheelOf(store::Connection &connection, std::int64_t accountId, std::optional<std::int64_t> wanted)
{
    Wheel wheel{.sets = typedSets(connection, accountId), .areas = typedAreas(connection, accountId)};
    wheel.set = chosen(wheel.sets, wanted);
    if (wheel.set == nullptr)
        return wheel;
    store::GoalRows goals = store::goalsOfSet(connection, accountId, wheel.set->id);
    while (const store::Goal *goal = goals.next()) {
        const auto area = std::find_if(wheel.areas.begin(), wheel.areas.end(),
                                       [&](const store::Area &known) { return known.id == goal->areaId; });
        if (const auto index = static_cast<std::size_t>(area - wheel.areas.begin()); index < sliceCount)
            wheel.goals.at(index).push_back(*goal);
    }
    return wheel;
}

std::int64_t countDone(const std::vector<store::Goal> &goals)
{
    return std::count_if(goals.begin(), goals.end(), [](const store::Goal &goal) { return goal.isChecked; });
}

Values goalValues(const store::Goal &goal)
{
    constexpr std::int32_t low = 0;
    constexpr std::int32_t high = 9;
    Values values;
    values.set("id", std::to_string(goal.id));
    values.set("name", wire::unescaped(goal.name));
    values.set("done", goal.isChecked);
    if (goal.priority == low || goal.priority == high)
        values.set("priority", goal.priority == low ? "low" : "high");
    return values;
}

/// An area with its goals, of which there may be too many for one page.
Values areaValues(const Wheel &wheel, std::size_t index, std::int32_t percent, bool isAlone)
{
    const store::Area &area = wheel.areas.at(index);
    const std::vector<store::Goal> &all = wheel.goals.at(index);
    const std::size_t shown = isAlone ? all.size() : std::min(all.size(), goalsPerArea);
    Values goals(Values::type::list);
    for (std::size_t i = 0; i < shown; ++i)
        goals.push_back(goalValues(all[i]));
    Values values;
    values.set("number", std::to_string(index + 1));
    values.set("id", std::to_string(area.id));
    values.set("name", area.name);
    values.set("value", std::to_string(area.value));
    values.set("percent", std::to_string(percent));
    values.set("count", std::to_string(all.size()));
    values.set("doneCount", std::to_string(countDone(all)));
    values.set("hasGoals", !all.empty());
    values.set("hasMore", shown < all.size());
    values.set("goals", goals);
    return values;
}

Values wheelValues(const Wheel &wheel, std::optional<std::int64_t> onlyArea)
{
    std::array<std::int32_t, sliceCount> numbers{};
    std::array<std::int32_t, sliceCount> percents{};
    Values areas(Values::type::list);
    for (std::size_t i = 0; i < sliceCount && i < wheel.areas.size(); ++i) {
        const auto &goals = wheel.goals.at(i);
        numbers.at(i) = wheel.areas[i].value;
        percents.at(i) = static_cast<std::int32_t>(
            requests::donePercent(countDone(goals), static_cast<std::int64_t>(goals.size())));
        const bool isAlone = onlyArea == wheel.areas[i].id;
        Values area = areaValues(wheel, i, percents.at(i), isAlone);
        area.set("isShown", !onlyArea || isAlone);
        areas.push_back(area);
    }
    auto slices = slicesOf(wheel.areas, numbers, percents);
    for (std::size_t i = 0; i < sliceCount && i < wheel.areas.size(); ++i)
        slices.at(i).link = "#area-" + std::to_string(wheel.areas[i].id);
    Values values;
    values.set("picture", wheelPicture("Wheel of " + wheel.set->name, slices));
    values.set("average", std::to_string(averageOf(percents)));
    values.set("set", std::to_string(wheel.set->id));
    values.set("setName", wheel.set->name);
    values.set("sets", choices(wheel.sets, wheel.set->id));
    values.set("areas", areas);
    values.set("isWhole", !onlyArea);
    return values;
}

} // namespace

void Site::showWheel(Visit &visit)
{
    Wheel wheel;
    if (!readAs(visit, [&](store::Connection &connection) {
            wheel = wheelOf(connection, visit.session->accountId, setIn(visit.query, "set"));
        }))
        return;
    if (wheel.set == nullptr) {
        showNoSet(visit, /*hasOthers=*/!wheel.sets.empty());
        return;
    }
    show(visit, "wheel", wheelValues(wheel, idIn(visit.query, "area")));
    keepPage(visit);
}

/// What set-checked-area-percent does.
void Site::tick(Visit &visit)
{
    const auto goalId = idIn(visit.form, "goal");
    std::optional<store::Goal> goal;
    if (!writeAs(visit, [&](store::Connection &connection) {
            const std::int64_t accountId = visit.session->accountId;
            goal = goalId ? store::findGoal(connection, accountId, *goalId) : std::nullopt;
            if (goal)
                store::checkGoal(connection, accountId, *goal, m_clocks.seconds());
        }))
        return;
    if (goal)
        visit.end(redirect("/wheel?set=" + std::to_string(goal->setId) + "&said=ticked#area-" +
                           std::to_string(goal->areaId)));
    else
        show(visit, "gone", Values(), /*status=*/404);
}

} // namespace tarvex::pages
