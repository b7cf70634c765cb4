#include "AccountOptions.h"
#include "Administration.h"
#include "Commands.h"
#include "Output.h"
#include "Times.h"
#include "Undeleting.h"

#include <ctime>
#include <iostream>

namespace tarvex::app {

namespace {

struct UndeleteOptions
{
    std::vector<std::int64_t> sets;
    std::vector<std::int64_t> goals;
};

boost::json::value described(const requests::Undeletable &found)
{
    boost::json::array sets;
    for (const auto &set : found.sets)
        sets.push_back({{"set", set.id},
                        {"name", set.name},
                        {"deleted", wire::utcTime(set.deletedAt)},
                        {"goals", set.goals}});
    boost::json::array goals;
    for (const auto &goal : found.goals)
        goals.push_back({{"goal", goal.id},
                         {"name", goal.name},
                         {"ofSet", found.setNames.at(goal.setId)},
                         {"ofArea", found.areaNames.at(goal.areaId)},
                         {"deleted", wire::utcTime(goal.deletedAt)},
                         {"setIsDeleted", goal.isSetDeleted}});
    return {{"sets", std::move(sets)}, {"goals", std::move(goals)}};
}

void printSentences(const requests::Undeletable &found)
{
    for (const auto &set : found.sets)
        std::cout << "--set " << set.id << "  \"" << shown(set.name) << "\" with "
                  << counted(set.goals, "goal") << ", deleted " << wire::utcTime(set.deletedAt) << "\n";
    for (const auto &goal : found.goals)
        std::cout << "--goal " << goal.id << "  \"" << shown(goal.name) << "\" of \""
                  << shown(found.setNames.at(goal.setId)) << "\", " << shown(found.areaNames.at(goal.areaId))
                  << ", deleted " << wire::utcTime(goal.deletedAt)
                  << (goal.isSetDeleted ? " (after its set)\n" : "\n");
    std::cout << counted(static_cast<std::int64_t>(found.sets.size()), "set") << " and "
              << counted(static_cast<std::int64_t>(found.goals.size()), "goal") << " can come back."
              << std::endl;
}

int undelete(const InstallationOptions &installation, const AccountOptions &account,
             const UndeleteOptions &options, bool isJson)
{
    store::Database database = installation.existing();
    const std::int64_t accountId = account.find(database, installation);
    if (options.sets.empty() && options.goals.empty()) {
        const requests::Undeletable found = requests::undeletable(database, accountId);
        isJson ? printJson(described(found)) : printSentences(found);
        return 0;
    }
    const std::int64_t goals =
        requests::undelete(database, accountId, options.sets, options.goals, std::time(nullptr));
    const auto sets = static_cast<std::int64_t>(options.sets.size());
    if (isJson)
        printJson({{"sets", sets}, {"goals", goals}});
    else
        std::cout << counted(sets, "set") << " and " << counted(goals, "goal") << " came back." << std::endl;
    return 0;
}

} // namespace

Command addUndelete(CLI::App &program)
{
    CLI::App *const command = program.add_subcommand(
        "undelete", "List what an account deleted lately or, with ids, bring it back; all of them or none");
    const auto options = std::make_shared<UndeleteOptions>();
    command->add_option("--set", options->sets, "Sets, each with the goals that were deleted with it");
    command->add_option("--goal", options->goals, "Goals that were deleted by themselves");
    return {command, [options, account = addAccountOptions(*command),
                      installation = addInstallationOptions(*command), isJson = addJsonOption(*command)] {
                return undelete(*installation, *account, *options, *isJson);
            }};
}

} // namespace tarvex::app
