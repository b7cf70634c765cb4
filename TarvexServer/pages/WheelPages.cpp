#include "Accounts.h"
#include "Areas.h"
#include "Call.h"
#include "Decimal.h"
#include "Goals.h"
#include "Replies.h"
#include "Sets.h"
#include "Site.h"
#include "WheelPicture.h"
#include "WireText.h"

#include <algorithm>
#include <numeric>

namespace tarvex::pages {

namespace {

/// Goals of an area that are shown among the others; there is a page for all of one.
constexpr std::size_t goalsPerArea = 100;

/// What one set's wheel is made of. Names are what was typed.
struct Wheel
{
    std::vector<store::Set> sets;
    std::vector<store::Area> areas;
    std::int64_t setId = 0; ///< 0 if there is no such set
    std::vector<store::Goal> goals = {};
};

/// Without a set that was asked for it is the first, as in the client.
Wheel wheelOf(store::Connection &connection, std::int64_t accountId, std::optional<std::int64_t> wanted)
{
    Wheel wheel{.sets = store::sets(connection, accountId), .areas = store::areas(connection, accountId)};
    for (store::Area &area : wheel.areas)
        area.name = wire::unescaped(area.name);
    for (store::Set &set : wheel.sets) {
        set.name = wire::unescaped(set.name);
        if (wheel.setId == 0 && set.id == wanted.value_or(set.id))
            wheel.setId = set.id;
    }
    if (wheel.setId != 0)
        wheel.goals = store::goalsOfSet(connection, accountId, wheel.setId);
    return wheel;
}

std::string priorityWord(std::int32_t priority)
{
    switch (priority) {
    case 0:
        return "low";
    case 9:
        return "high";
    default:
        return "";
    }
}

Values goalValues(const store::Goal &goal)
{
    Values values;
    values.set("id", std::to_string(goal.id));
    values.set("name", wire::unescaped(goal.name));
    values.set("done", goal.isChecked);
    if (const std::string word = priorityWord(goal.priority); !word.empty())
        values.set("priority", word);
    return values;
}

/// The goals of one area, of which there may be too many for one page.
Values areaValues(const Wheel &wheel, std::size_t index, bool isAlone)
{
    const store::Area &area = wheel.areas.at(index);
    std::size_t count = 0;
    std::int64_t done = 0;
    Values goals(Values::type::list);
    for (const store::Goal &goal : wheel.goals) {
        if (goal.areaId != area.id)
            continue;
        done += goal.isChecked ? 1 : 0;
        if (++count <= goalsPerArea || isAlone)
            goals.push_back(goalValues(goal));
    }
    Values values;
    values.set("number", std::to_string(index + 1));
    values.set("id", std::to_string(area.id));
    values.set("name", area.name);
    values.set("value", std::to_string(area.value));
    values.set("percent", std::to_string(requests::donePercent(done, static_cast<std::int64_t>(count))));
    values.set("count", std::to_string(count));
    values.set("doneCount", std::to_string(done));
    values.set("hasGoals", count > 0);
    values.set("hasMore", count > goalsPerArea && !isAlone);
    values.set("goals", goals);
    return values;
}

std::string pictureOf(const Wheel &wheel, const std::vector<std::int64_t> &percents,
                      const std::string &setName)
{
    std::array<Slice, sliceCount> slices;
    for (std::size_t i = 0; i < sliceCount && i < wheel.areas.size(); ++i) {
        const store::Area &area = wheel.areas[i];
        slices.at(i) = {.value = area.value,
                        .percent = percents.at(i),
                        .words = area.name + ": value " + std::to_string(area.value) + ", " +
                                 std::to_string(percents.at(i)) + " percent of its goals done",
                        .link = "#area-" + std::to_string(area.id)};
    }
    return wheelPicture("Wheel of " + setName, slices);
}

std::optional<std::int64_t> idIn(const PageForm &form, std::string_view name)
{
    return wire::wireId(form.field(name).value_or(""));
}

Values wheelValues(const Wheel &wheel, std::optional<std::int64_t> onlyArea)
{
    Values values;
    Values sets(Values::type::list);
    std::string setName;
    for (const store::Set &set : wheel.sets) {
        Values entry;
        entry.set("id", std::to_string(set.id));
        entry.set("name", set.name);
        entry.set("selected", set.id == wheel.setId);
        sets.push_back(std::move(entry));
        if (set.id == wheel.setId)
            setName = set.name;
    }
    Values areas(Values::type::list);
    std::vector<std::int64_t> percents;
    for (std::size_t i = 0; i < wheel.areas.size(); ++i) {
        const bool isAlone = onlyArea == wheel.areas[i].id;
        Values area = areaValues(wheel, i, isAlone);
        percents.push_back(std::stoll(area.get("percent")->string_value()));
        area.set("isShown", !onlyArea || isAlone);
        areas.push_back(std::move(area));
    }
    values.set("picture", pictureOf(wheel, percents, setName));
    values.set("average", std::to_string(std::accumulate(percents.begin(), percents.end(), std::int64_t(0)) /
                                         static_cast<std::int64_t>(sliceCount)));
    values.set("set", std::to_string(wheel.setId));
    values.set("setName", setName);
    values.set("sets", sets);
    values.set("areas", areas);
    values.set("isWhole", !onlyArea);
    return values;
}

} // namespace

void Site::showWheel(Visit &visit)
{
    const bool isAnySet = visit.query.fields("set").empty();
    const auto wanted = isAnySet ? std::nullopt : std::optional(idIn(visit.query, "set").value_or(-1));
    Wheel wheel;
    if (!readAs(visit, [&](store::Connection &connection) {
            wheel = wheelOf(connection, visit.session->accountId, wanted);
        }))
        return;
    if (wheel.setId == 0 && !isAnySet) {
        show(visit, "gone", Values(), /*status=*/404);
        return;
    }
    show(visit, wheel.setId != 0 ? "wheel" : "no-sets", wheelValues(wheel, idIn(visit.query, "area")));
    m_cache.keep(cacheKey(visit), *visit.session, visit.reply);
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
