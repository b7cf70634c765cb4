#include "Undeleting.h"

#include "Accounts.h"
#include "Administration.h"
#include "Areas.h"
#include "Quotas.h"
#include "Undelete.h"
#include "WireText.h"

#include <algorithm>
#include <utility>

namespace tarvex::requests {

namespace {

Undeletable collected(store::Connection &connection, std::int64_t accountId)
{
    Undeletable found;
    for (const store::Area &area : store::areas(connection, accountId))
        found.areaNames[area.id] = wire::unescaped(area.name);
    for (const store::Set &set : store::sets(connection, accountId))
        found.setNames[set.id] = wire::unescaped(set.name);
    std::map<std::int64_t, Undeletable::Set> deletedSets;
    for (const store::DeletedSet &deleted : store::deletedSets(connection, accountId)) {
        const std::string name = wire::unescaped(deleted.set.name);
        found.setNames[deleted.set.id] = name;
        deletedSets[deleted.set.id] = {.id = deleted.set.id, .name = name, .deletedAt = deleted.deletedAt};
    }
    for (const store::DeletedGoal &deleted : store::deletedGoals(connection, accountId)) {
        const store::Goal &goal = deleted.goal;
        const auto set = deletedSets.find(goal.setId);
        if (set != deletedSets.end() && set->second.deletedAt == deleted.deletedAt)
            ++set->second.goals;
        else
            found.goals.push_back({.id = goal.id,
                                   .name = wire::unescaped(goal.name),
                                   .setId = goal.setId,
                                   .areaId = goal.areaId,
                                   .deletedAt = deleted.deletedAt,
                                   .isSetDeleted = set != deletedSets.end()});
    }
    std::stable_sort(found.goals.begin(), found.goals.end(),
                     [](const auto &a, const auto &b) { return a.deletedAt > b.deletedAt; });
    for (auto &[id, set] : deletedSets)
        found.sets.push_back(std::move(set));
    return found;
}

[[noreturn]] void failWithout(const std::string &what, std::int64_t id)
{
    throw AccountProblem("There is no deleted " + what + " " + std::to_string(id) +
                         " that could come back; nothing did.");
}

std::int64_t bringBack(store::Connection &connection, std::int64_t accountId,
                       const std::vector<std::int64_t> &setIds, const std::vector<std::int64_t> &goalIds,
                       std::int64_t now)
{
    std::int64_t goals = 0;
    for (const std::int64_t setId : setIds) {
        const auto withSet = store::undeleteSet(connection, accountId, setId, now);
        if (!withSet)
            failWithout("set", setId);
        goals += *withSet;
    }
    for (const std::int64_t goalId : goalIds) {
        if (!store::undeleteGoal(connection, accountId, goalId, now))
            failWithout("goal", goalId);
        ++goals;
    }
    return goals;
}

} // namespace

Undeletable undeletable(store::Database &database, std::int64_t accountId)
{
    Undeletable found;
    database.read([&](store::Connection &connection) { found = collected(connection, accountId); });
    return found;
}

std::int64_t undelete(store::Connection &connection, std::int64_t accountId,
                      const std::vector<std::int64_t> &setIds, const std::vector<std::int64_t> &goalIds,
                      std::int64_t now)
{
    try {
        return bringBack(connection, accountId, setIds, goalIds, now);
    } catch (const store::QuotaExceeded &) {
        throw AccountProblem("The account would hold more than it may; nothing came back.");
    }
}

std::int64_t undelete(store::Database &database, std::int64_t accountId,
                      const std::vector<std::int64_t> &setIds, const std::vector<std::int64_t> &goalIds,
                      std::int64_t now)
{
    std::int64_t goals = 0;
    database.write([&](store::Connection &connection) {
        store::countChange(connection, accountId);
        goals = undelete(connection, accountId, setIds, goalIds, now);
    });
    return goals;
}

} // namespace tarvex::requests
