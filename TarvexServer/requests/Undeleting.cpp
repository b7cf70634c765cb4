#include "Undeleting.h"

#include "Accounts.h"
#include "Administration.h"
#include "Areas.h"
#include "Quotas.h"
#include "Undelete.h"
#include "WireText.h"

#include <algorithm>
#include <map>

namespace tarvex::requests {

namespace {

/// A set that goals hang on, whether it is deleted or not.
struct KnownSet
{
    std::string name;
    std::int64_t deletedAt = 0; // or 0
};

using KnownSets = std::map<std::int64_t, KnownSet>;

KnownSets knownSets(store::Connection &connection, std::int64_t accountId)
{
    KnownSets known;
    for (const store::Set &set : store::sets(connection, accountId))
        known[set.id] = {.name = wire::unescaped(set.name)};
    for (const store::DeletedSet &deleted : store::deletedSets(connection, accountId))
        known[deleted.set.id] = {.name = wire::unescaped(deleted.set.name), .deletedAt = deleted.deletedAt};
    return known;
}

Undeletable collected(store::Connection &connection, std::int64_t accountId)
{
    const KnownSets known = knownSets(connection, accountId);
    std::map<std::int64_t, std::string> areaNames;
    for (const store::Area &area : store::areas(connection, accountId))
        areaNames[area.id] = wire::unescaped(area.name);
    std::map<std::int64_t, std::int64_t> goalsWithSet;
    Undeletable found;
    for (const store::DeletedGoal &deleted : store::deletedGoals(connection, accountId)) {
        const store::Goal &goal = deleted.goal;
        const KnownSet &set = known.at(goal.setId);
        if (deleted.deletedAt == set.deletedAt)
            ++goalsWithSet[goal.setId];
        else
            found.goals.push_back({.id = goal.id,
                                   .name = wire::unescaped(goal.name),
                                   .set = set.name,
                                   .area = areaNames[goal.areaId],
                                   .deletedAt = deleted.deletedAt,
                                   .isSetDeleted = set.deletedAt != 0});
    }
    std::stable_sort(found.goals.begin(), found.goals.end(),
                     [](const auto &a, const auto &b) { return a.deletedAt > b.deletedAt; });
    for (const auto &[id, set] : known) {
        if (set.deletedAt != 0)
            found.sets.push_back(
                {.id = id, .name = set.name, .deletedAt = set.deletedAt, .goals = goalsWithSet[id]});
    }
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

std::int64_t undelete(store::Database &database, std::int64_t accountId,
                      const std::vector<std::int64_t> &setIds, const std::vector<std::int64_t> &goalIds,
                      std::int64_t now)
{
    std::int64_t goals = 0;
    try {
        database.write([&](store::Connection &connection) {
            store::countChange(connection, accountId);
            goals = bringBack(connection, accountId, setIds, goalIds, now);
        });
    } catch (const store::QuotaExceeded &) {
        throw AccountProblem("The account would hold more than it may; nothing came back.");
    }
    return goals;
}

} // namespace tarvex::requests
