#pragma once

#include <string>

namespace tarvex::requests {

struct Call;

// One function per kind of request that needs a signed-in account; see RequestKind::Handler.

std::string signIn(Call &call);

std::string getSets(Call &call);
std::string createSets(Call &call);
std::string setSetsName(Call &call);
std::string deleteSets(Call &call);

std::string getAreas(Call &call);
std::string setAreaNames(Call &call);
std::string setAreaValue(Call &call);

std::string getGoals(Call &call);
std::string getComplexGoalsForSets(Call &call);
std::string getRandomGoal(Call &call);
std::string createGoal(Call &call);
std::string createSomeGoals(Call &call);
std::string deleteGoal(Call &call);
std::string deleteSomeGoals(Call &call);
std::string setCheckedAreaPercent(Call &call);

} // namespace tarvex::requests
