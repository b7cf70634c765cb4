#include "SampleAccount.h"

#include "Goals.h"
#include "Md5.h"
#include "NewAccounts.h"
#include "PasswordHash.h"
#include "Sets.h"

#include <array>
#include <chrono>
#include <vector>

namespace tarvex::requests {

namespace {

constexpr std::array<std::int32_t, 8> areaValues = {6, 4, 7, 5, 2, 3, 8, 1};

struct SampleGoal
{
    std::int64_t areaId;
    std::int32_t priority;
    bool isChecked;
    const char *name;
};

constexpr std::array<SampleGoal, 27> autumnGoals = {{
    {1, 9, true, "Run five kilometres without a break"},
    {1, 5, true, "Sleep before eleven on weekdays"},
    {1, 5, true, "See the dentist"},
    {1, 0, false, "Swim once a week until December"},
    {2, 9, true, "Finish the quarterly report"},
    {2, 5, true, "Ask for feedback after the next talk"},
    {2, 9, false, "Write the proposal for the new project"},
    {2, 5, false, "Meet a mentor for lunch"},
    {2, 0, false, "Tidy up the shared drive"},
    {3, 9, true, "Put aside three monthly incomes"},
    {4, 9, true, "Call the parents every Sunday"},
    {4, 5, true, "Plan the birthday party"},
    {4, 5, false, "Weekend hike with old friends"},
    {5, 9, true, "Read one book a month"},
    {5, 5, false, "Practise Spanish twenty minutes a day"},
    {5, 0, false, "Start a journal"},
    {6, 5, true, "Go to a concert"},
    {6, 0, false, "Learn three songs on the guitar"},
    {7, 9, true, "Repair the kitchen tap"},
    {7, 5, true, "Paint the hallway"},
    {7, 5, true, "Sort out the attic"},
    {7, 0, true, "Hang up the pictures"},
    {7, 0, false, "Plant bulbs for spring"},
    {8, 9, true, "Cook dinner together on Fridays"},
    {8, 5, false, "Weekend at the sea"},
    {8, 5, false, "Dance class for two"},
    {8, 0, false, "Write a letter by hand"},
}};

constexpr std::array<SampleGoal, 8> summerGoals = {{
    {1, 9, true, "Cycle to work twice a week"},
    {1, 5, false, "Drink more water"},
    {2, 9, true, "Learn the new build system"},
    {3, 5, false, "Compare insurances"},
    {4, 5, true, "Grill evening with the neighbours"},
    {5, 9, true, "Finish the photography course"},
    {6, 0, false, "Camp under the stars"},
    {8, 5, true, "Picnic by the river"},
}};

template<std::size_t size>
std::vector<store::Goal> goalsOf(std::int64_t setId, const std::array<SampleGoal, size> &samples)
{
    std::vector<store::Goal> goals;
    goals.reserve(size);
    for (const SampleGoal &sample : samples)
        goals.push_back(store::Goal{.id = 0,
                                    .setId = setId,
                                    .areaId = sample.areaId,
                                    .name = sample.name,
                                    .priority = sample.priority,
                                    .isChecked = sample.isChecked});
    return goals;
}

void fillAccount(store::Connection &connection, std::int64_t accountId)
{
    // The oldest set is listed first, the others from the newest back.
    const std::int64_t autumn = store::createSet(connection, accountId, "Autumn 2026");
    store::createSet(connection, accountId, "Spring 2026");
    const std::int64_t summer = store::createSet(connection, accountId, "Summer 2026");
    store::createGoals(connection, accountId, goalsOf(autumn, autumnGoals));
    store::createGoals(connection, accountId, goalsOf(summer, summerGoals));
}

} // namespace

bool createSampleAccount(store::Database &database, const security::KeyedHash &hash)
{
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    const std::string password = security::hashPassword(security::signInDigest(samplePassword));
    store::NewAccount account = newAccount(loginKeys(hash, sampleLogin), "Sample", password, now);
    for (std::size_t i = 0; i < areaValues.size(); ++i)
        account.areas[i].value = areaValues[i];
    bool isNew = false;
    database.write([&](store::Connection &connection) {
        const auto accountId = store::createAccount(connection, account);
        isNew = accountId.has_value();
        if (isNew)
            fillAccount(connection, *accountId);
    });
    return isNew;
}

} // namespace tarvex::requests
