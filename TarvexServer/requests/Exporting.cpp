#include "Exporting.h"

#include "Areas.h"
#include "Goals.h"
#include "NewAccounts.h"
#include "Quotas.h"
#include "Undelete.h"
#include "WireText.h"

#include <map>

namespace tarvex::requests {

namespace {

using Set = wire::AccountExport::Set;
using Goal = wire::AccountExport::Goal;

/// The sets of an account by their ids, and so in the order in which they were made.
using SetsById = std::map<std::int64_t, Set>;

Goal exported(const store::Goal &goal)
{
    return {.area = goal.areaId,
            .name = wire::unescaped(goal.name),
            .priority = goal.priority,
            .isDone = goal.isChecked};
}

SetsById liveSets(store::Connection &connection, std::int64_t accountId)
{
    SetsById found;
    for (const store::Set &set : store::sets(connection, accountId)) {
        Set &live = found[set.id];
        live.name = wire::unescaped(set.name);
        store::GoalRows goals = store::goalsOfSet(connection, accountId, set.id);
        while (const store::Goal *goal = goals.next())
            live.goals.push_back(exported(*goal));
    }
    return found;
}

void addDeleted(SetsById &sets, store::Connection &connection, std::int64_t accountId)
{
    for (const store::DeletedSet &deleted : store::deletedSets(connection, accountId))
        sets[deleted.set.id] = {.name = wire::unescaped(deleted.set.name), .deletedAt = deleted.deletedAt};
    for (const store::DeletedGoal &deleted : store::deletedGoals(connection, accountId)) {
        Goal goal = exported(deleted.goal);
        goal.deletedAt = deleted.deletedAt;
        sets[deleted.goal.setId].goals.push_back(std::move(goal));
    }
}

/// What was typed, as the store keeps it.
std::string storable(const std::string &typedText, const std::string &place)
{
    auto name = wire::storableName(wire::escaped(typedText));
    if (!name)
        throw AccountProblem("The name of " + place + " is too long; nothing was imported.");
    return *name;
}

void importAreas(store::Connection &connection, std::int64_t accountId,
                 const std::vector<wire::AccountExport::Area> &areas, std::int64_t now)
{
    const std::vector<store::Area> known = store::areas(connection, accountId);
    if (areas.size() > known.size())
        throw AccountProblem("The export has more areas than the account; nothing was imported.");
    for (std::size_t i = 0; i < areas.size(); ++i) {
        const std::string name = storable(areas[i].name, "area " + std::to_string(i + 1));
        store::renameArea(connection, accountId, known[i].id, name);
        store::setAreaValue(connection, accountId, known[i].id, areas[i].value, now);
    }
}

void importSets(store::Connection &connection, std::int64_t accountId, const std::vector<Set> &sets,
                std::int64_t now)
{
    for (std::size_t i = 0; i < sets.size(); ++i) {
        const std::string place = "set " + std::to_string(i + 1);
        const std::int64_t setId =
            store::createSet(connection, accountId, storable(sets[i].name, place), now);
        std::vector<store::Goal> goals;
        goals.reserve(sets[i].goals.size());
        for (const Goal &goal : sets[i].goals) {
            const std::string goalPlace = "goal " + std::to_string(goals.size() + 1) + " of " + place;
            goals.push_back({.setId = setId,
                             .areaId = goal.area,
                             .name = storable(goal.name, goalPlace),
                             .priority = goal.priority,
                             .isChecked = goal.isDone});
        }
        store::createGoals(connection, accountId, goals, now);
    }
}

/// Runs the work that imports in one transaction.
void importWith(store::Database &database, const store::Database::Work &work)
{
    try {
        database.write(work);
    } catch (const store::QuotaExceeded &) {
        throw AccountProblem("The account would hold more than it may, which is 500 sets with names of"
                             " 4 MiB and 20,000 goals with names of 16 MiB; nothing was imported.");
    }
}

} // namespace

wire::AccountExport exportAccount(store::Database &database, std::int64_t accountId, bool withDeleted)
{
    std::optional<std::string> name;
    std::vector<store::Area> areas;
    SetsById sets;
    database.read([&](store::Connection &connection) {
        name = store::accountName(connection, accountId);
        areas = store::areas(connection, accountId);
        sets = liveSets(connection, accountId);
        if (withDeleted)
            addDeleted(sets, connection, accountId);
    });
    if (!name)
        throw AccountProblem("There is no account " + std::to_string(accountId) + ".");
    wire::AccountExport account{.name = *name, .areas = {}, .sets = {}};
    for (const store::Area &area : areas)
        account.areas.push_back({.name = wire::unescaped(area.name), .value = area.value});
    for (auto &[id, set] : sets)
        account.sets.push_back(std::move(set));
    return account;
}

void importAccount(store::Database &database, std::int64_t accountId, const wire::AccountExport &imported,
                   std::int64_t now)
{
    importWith(database, [&](store::Connection &connection) {
        store::countChange(connection, accountId);
        importAreas(connection, accountId, imported.areas, now);
        importSets(connection, accountId, imported.sets, now);
    });
}

std::int64_t createImported(store::Database &database, const security::KeyedHash &hash,
                            const AccountTexts &texts, std::int64_t now, const wire::AccountExport &imported)
{
    const store::NewAccount account = newAccountOf(hash, texts, now);
    std::int64_t accountId = 0;
    importWith(database, [&](store::Connection &connection) {
        accountId = requireNew(imported.sets.empty() ? createWithSet(connection, account)
                                                     : store::createAccount(connection, account));
        importAreas(connection, accountId, imported.areas, now);
        importSets(connection, accountId, imported.sets, now);
    });
    return accountId;
}

} // namespace tarvex::requests
