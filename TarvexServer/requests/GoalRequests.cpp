#include "Goals.h"

#include "Call.h"
#include "Handlers.h"
#include "Quotas.h"
#include "Records.h"
#include "RequestKind.h"
#include "Sets.h"
#include "WireText.h"
#include "XmlAnswer.h"

#include <algorithm>
#include <random>
#include <set>

namespace tarvex::requests {

namespace {

/// A longer list of ids would only hold up everyone else.
constexpr auto maximumIds = static_cast<std::size_t>(store::Quotas::goals);

/// What the goals of one answer may take as the records of a save, beside its other fields.
constexpr std::size_t saveRoom = largestBody - 1024;

constexpr std::size_t longestRecordFrame =
    std::string_view("name:;priority:-2147483648;checked:1;setsId:2147483647;areaId:2147483647;{_end_}")
        .size();

void writeGoal(wire::XmlAnswer &answer, const store::Goal &goal, bool withArea)
{
    answer.beginRecord();
    answer.element("id", goal.id);
    answer.element("name", goal.name);
    if (withArea)
        answer.element("area", goal.areaId);
    answer.element("priority", goal.priority);
    answer.element("checked", goal.isChecked ? "y" : "n");
    answer.endRecord();
}

bool placeExists(const Call &call, wire::GoalPlace place)
{
    return store::hasPlace(call.connection, call.accountId, place.setId, place.areaId);
}

/// The records whose set and area are the account's own, as goals.
std::vector<store::Goal> soundGoals(const Call &call, const std::vector<wire::GoalRecord> &records)
{
    const auto [first, last] =
        std::minmax_element(records.begin(), records.end(), [](const auto &record, const auto &other) {
            return record.place.setId < other.place.setId;
        });
    if (first == records.end())
        return {};
    const auto places =
        store::placesOfSets(call.connection, call.accountId, first->place.setId, last->place.setId);
    std::vector<store::Goal> goals;
    for (const wire::GoalRecord &record : records) {
        if (places.contains({record.place.setId, record.place.areaId}))
            goals.push_back({.setId = record.place.setId,
                             .areaId = record.place.areaId,
                             .name = record.name,
                             .priority = record.priority,
                             .isChecked = record.isChecked});
    }
    return goals;
}

std::set<wire::GoalPlace> placesOf(const std::vector<store::PlacedGoal> &goals)
{
    std::set<wire::GoalPlace> places;
    for (const store::PlacedGoal &goal : goals)
        places.insert({.setId = goal.setId, .areaId = goal.areaId});
    return places;
}

} // namespace

std::string getGoals(Call &call)
{
    const std::int64_t setId = idField(call, /*number=*/4);
    const std::int64_t areaId = idField(call, /*number=*/5);
    wire::XmlAnswer answer;
    std::size_t room = saveRoom;
    store::GoalRows goals = store::goalsOfArea(call.connection, call.accountId, setId, areaId);
    while (const store::Goal *goal = goals.next()) {
        const std::size_t size = longestRecordFrame + wire::escapedSize(goal->name);
        if (size > room)
            break; // the client could not save more; the others follow once these have gone
        room -= size;
        writeGoal(answer, *goal, /*withArea=*/false);
    }
    // Goals are only where there is a place for them.
    require(room < saveRoom || placeExists(call, {.setId = setId, .areaId = areaId}));
    return answer.finish();
}

std::string getComplexGoalsForSets(Call &call)
{
    const std::int64_t setId = idField(call, /*number=*/4);
    require(store::hasSet(call.connection, call.accountId, setId));
    wire::XmlAnswer answer;
    store::GoalRows goals = store::goalsOfSet(call.connection, call.accountId, setId);
    while (const store::Goal *goal = goals.next())
        writeGoal(answer, *goal, /*withArea=*/true);
    return answer.finish();
}

std::string getRandomGoal(Call &call)
{
    const std::int64_t setId = idField(call, /*number=*/4);
    const std::int64_t undone = store::countUndone(call.connection, call.accountId, setId);
    require(undone > 0);
    std::random_device source;
    std::uniform_int_distribution<std::int64_t> place(0, undone - 1);
    const auto goal = store::undoneGoal(call.connection, call.accountId, setId, place(source));
    require(goal.has_value());
    wire::XmlAnswer answer(wire::XmlAnswer::Encoding::Ascii);
    writeGoal(answer, *goal, /*withArea=*/true);
    return answer.finish();
}

std::string createGoal(Call &call)
{
    const wire::GoalRecord record{
        .name = nameField(call, /*number=*/4),
        .priority = numberField(call, /*number=*/5),
        .isChecked = numberField(call, /*number=*/6) != 0,
        .place = {.setId = idField(call, /*number=*/7), .areaId = idField(call, /*number=*/8)}};
    const std::vector<store::Goal> goals = soundGoals(call, {record});
    require(!goals.empty());
    store::createGoals(call.connection, call.accountId, goals, call.now);
    return done();
}

std::string createSomeGoals(Call &call)
{
    const std::string_view field = textField(call, /*number=*/4);
    const std::vector<store::Goal> goals = soundGoals(call, wire::readGoalRecords(field));
    require(!goals.empty() || field.empty());
    store::createGoals(call.connection, call.accountId, goals, call.now);
    return done();
}

std::string deleteGoal(Call &call)
{
    const auto goals = store::placedGoals(call.connection, call.accountId, {idField(call, /*number=*/4)});
    require(!goals.empty());
    store::deleteGoals(call.connection, call.accountId, goals, call.now);
    return done();
}

std::string deleteSomeGoals(Call &call)
{
    const std::string_view field = textField(call, /*number=*/4);
    if (field.empty())
        return done();
    std::vector<std::int64_t> list = wire::readIdList(field);
    require(!list.empty() && list.size() <= maximumIds);
    const auto goals = store::placedGoals(call.connection, call.accountId, std::move(list));
    const bool isGuarded = call.refusedSaves.takeRefusal(call.connection, call.saver, placesOf(goals));
    require(!isGuarded, Reason::RefusedSave);
    store::deleteGoals(call.connection, call.accountId, goals, call.now);
    return done();
}

std::string setCheckedAreaPercent(Call &call)
{
    const auto goal = store::findGoal(call.connection, call.accountId, idField(call, /*number=*/5));
    require(goal.has_value());
    store::checkGoal(call.connection, call.accountId, *goal, call.now);
    for (const store::GoalCount &count : store::goalCounts(call.connection, call.accountId)) {
        if (count.setId == goal->setId && count.areaId == goal->areaId)
            return std::to_string(donePercent(count.checked, count.count));
    }
    throw RequestRefused();
}

} // namespace tarvex::requests
