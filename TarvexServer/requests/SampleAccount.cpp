#include "SampleAccount.h"

#include "Goals.h"
#include "NewAccounts.h"
#include "Sets.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <vector>

namespace tarvex::requests {

namespace {

constexpr std::array<std::int32_t, 8> areaValues = {7, 5, 8, 6, 4, 3, 8, 5};

struct SampleGoal
{
    int quartersAgo;
    std::int64_t areaId;
    std::int32_t priority;
    bool isChecked;
    const char *name;
};

/// A year in which some goals are reached, some are raised, and some wait.
constexpr std::array<SampleGoal, 87> year = {{
    {3, 1, 9, true, "Walk half an hour every day"},
    {3, 1, 5, true, "Cycle to work twice a week"},
    {3, 1, 5, false, "Run three kilometres"},
    {3, 2, 9, true, "Finish the training"},
    {3, 2, 5, false, "Learn to say no to extra work"},
    {3, 2, 5, false, "Clear the inbox by Friday noon"},
    {3, 3, 9, true, "Write down what is spent for a month"},
    {3, 3, 5, false, "Put aside one monthly income"},
    {3, 3, 0, false, "Compare insurances"},
    {3, 4, 9, true, "Visit the grandparents"},
    {3, 4, 5, false, "Call the parents every Sunday"},
    {3, 5, 5, true, "Borrow a novel from the library"},
    {3, 5, 9, false, "Enrol in a Spanish course"},
    {3, 6, 5, false, "Go to a concert"},
    {3, 6, 0, true, "An evening of board games"},
    {3, 7, 9, true, "Throw out what nobody uses"},
    {3, 7, 5, false, "Fix the squeaking door"},
    {3, 8, 9, false, "One evening a week for the two of us"},
    {3, 8, 5, true, "Picnic by the river"},
    {2, 1, 9, true, "Run three kilometres"},
    {2, 1, 5, true, "Drink more water"},
    {2, 1, 5, false, "Sleep before eleven on weekdays"},
    {2, 2, 9, true, "Clear the inbox by Friday noon"},
    {2, 2, 5, false, "Give a talk to the team"},
    {2, 3, 9, true, "Put aside one monthly income"},
    {2, 3, 0, true, "Compare insurances"},
    {2, 3, 5, false, "Talk to the bank about the loan"},
    {2, 4, 9, true, "Call the parents every Sunday"},
    {2, 4, 5, false, "Grill evening with the neighbours"},
    {2, 5, 9, true, "Enrol in a Spanish course"},
    {2, 5, 5, false, "Read one book a month"},
    {2, 6, 5, true, "Take pictures on a day trip"},
    {2, 6, 0, false, "Tune the old guitar"},
    {2, 7, 9, true, "Fix the squeaking door"},
    {2, 7, 5, true, "Wash all the curtains"},
    {2, 7, 5, false, "Sort out the attic"},
    {2, 8, 9, true, "One evening a week for the two of us"},
    {2, 8, 5, false, "Dance class for two"},
    {1, 1, 9, true, "Run four kilometres"},
    {1, 1, 5, true, "Cook without ready-made meals"},
    {1, 1, 5, false, "Sleep before eleven on weekdays"},
    {1, 2, 9, true, "Learn the new build system"},
    {1, 2, 5, true, "Give a talk to the team"},
    {1, 2, 5, false, "Meet a mentor for lunch"},
    {1, 3, 9, true, "Put aside two monthly incomes"},
    {1, 3, 5, true, "Talk to the bank about the loan"},
    {1, 4, 9, true, "Call the parents every Sunday"},
    {1, 4, 5, true, "Grill evening with the neighbours"},
    {1, 4, 0, false, "Find two old friends again"},
    {1, 5, 9, true, "Finish the photography course"},
    {1, 5, 5, true, "Read one book a month"},
    {1, 5, 5, false, "Practise Spanish twenty minutes a day"},
    {1, 6, 5, true, "Tune the old guitar"},
    {1, 6, 0, false, "Camp under the stars"},
    {1, 7, 9, true, "New shelves for the living room"},
    {1, 7, 5, false, "Paint the hallway"},
    {1, 8, 9, true, "One evening a week for the two of us"},
    {1, 8, 5, true, "A day in the mountains"},
    {1, 8, 5, false, "Dance class for two"},
    {0, 1, 9, true, "Run five kilometres without a break"},
    {0, 1, 5, true, "Sleep before eleven on weekdays"},
    {0, 1, 5, true, "See the dentist"},
    {0, 1, 0, false, "Swim once a week"},
    {0, 2, 9, true, "Finish the quarterly report"},
    {0, 2, 5, true, "Ask for feedback after the next talk"},
    {0, 2, 9, false, "Write the proposal for the new project"},
    {0, 2, 5, false, "Meet a mentor for lunch"},
    {0, 3, 9, true, "Put aside three monthly incomes"},
    {0, 3, 5, true, "Pay the loan back a month early"},
    {0, 3, 0, false, "Read up on pensions"},
    {0, 4, 9, true, "Call the parents every Sunday"},
    {0, 4, 5, true, "Plan the birthday party"},
    {0, 4, 5, false, "A hike with old friends"},
    {0, 5, 9, true, "Read one book a month"},
    {0, 5, 5, false, "Practise Spanish twenty minutes a day"},
    {0, 5, 0, false, "Start a journal"},
    {0, 6, 5, true, "Go to a concert"},
    {0, 6, 0, false, "Learn three songs on the guitar"},
    {0, 6, 0, false, "Camp under the stars"},
    {0, 7, 9, true, "Repair the kitchen tap"},
    {0, 7, 5, true, "Paint the hallway"},
    {0, 7, 5, true, "Sort out the attic"},
    {0, 7, 0, false, "Hang up the pictures"},
    {0, 8, 9, true, "Cook dinner together on Fridays"},
    {0, 8, 5, true, "A weekend at the sea"},
    {0, 8, 5, false, "Dance class for two"},
    {0, 8, 0, false, "Write a letter by hand"},
}};

/// As people name the set of a day: "October 2026".
std::string monthAndYear(std::chrono::year_month month)
{
    constexpr std::array<const char *, 12> names = {"January",   "February", "March",    "April",
                                                    "May",       "June",     "July",     "August",
                                                    "September", "October",  "November", "December"};
    const std::string name = names[static_cast<unsigned>(month.month()) - 1];
    return name + " " + std::to_string(static_cast<int>(month.year()));
}

std::vector<store::Goal> goalsOf(std::int64_t setId, int quartersAgo)
{
    std::vector<store::Goal> goals;
    for (const SampleGoal &sample : year)
        if (sample.quartersAgo == quartersAgo)
            goals.push_back({.setId = setId,
                             .areaId = sample.areaId,
                             .name = sample.name,
                             .priority = sample.priority,
                             .isChecked = sample.isChecked});
    return goals;
}

std::vector<store::Goal> readAll(store::GoalRows rows)
{
    std::vector<store::Goal> goals;
    while (const store::Goal *goal = rows.next())
        goals.push_back(*goal);
    return goals;
}

/// Makes the set of a month as if its goals had been done here and there in the quarter from then on, so that
/// its progress has something to show.
void fillSet(store::Connection &connection, std::int64_t accountId, std::chrono::year_month month,
             int quartersAgo, std::time_t now)
{
    using namespace std::chrono;
    const std::int64_t begin = system_clock::to_time_t(sys_days(month / 1));
    const std::int64_t end =
        std::min<std::int64_t>(now, system_clock::to_time_t(sys_days((month + months(3)) / 1)));
    const std::int64_t setId = store::createSet(connection, accountId, monthAndYear(month), begin);
    std::vector<store::Goal> goals = goalsOf(setId, quartersAgo);
    std::multimap<std::int64_t, std::size_t> done; // by the time
    for (std::size_t i = 0; i < goals.size(); ++i) {
        if (goals[i].isChecked)
            done.emplace(begin + (end - begin) * static_cast<std::int64_t>(i * 37 % 101 + 1) / 102, i);
        goals[i].isChecked = false;
    }
    store::createGoals(connection, accountId, goals, begin);
    std::vector<store::Goal> made = readAll(store::goalsOfSet(connection, accountId, setId));
    std::sort(made.begin(), made.end(), [](const auto &one, const auto &other) { return one.id < other.id; });
    for (const auto &[time, i] : done)
        store::checkGoal(connection, accountId, made[i], time);
}

void fillAccount(store::Connection &connection, std::int64_t accountId, std::time_t now)
{
    using namespace std::chrono;
    const year_month_day today = floor<days>(system_clock::from_time_t(now));
    // The oldest set is listed first, the others from the newest back.
    for (const int quartersAgo : {0, 3, 2, 1}) {
        const year_month month = today.year() / today.month() - months(3 * quartersAgo);
        fillSet(connection, accountId, month, quartersAgo, now);
    }
}

} // namespace

bool createSampleAccount(store::Database &database, const security::KeyedHash &hash, bool besideOthers,
                         std::time_t now)
{
    store::NewAccount account =
        newAccount(loginKeys(hash, sampleLogin), "Sample", newPasswordHash(samplePassword), now);
    for (std::size_t i = 0; i < areaValues.size(); ++i)
        account.areas[i].value = areaValues[i];
    bool isNew = false;
    database.write([&](store::Connection &connection) {
        const bool areOthers = store::countAccounts(connection) > 0;
        const auto accountId = store::createAccount(connection, account);
        if (accountId && areOthers && !besideOthers)
            throw std::runtime_error(
                "There are other accounts in the database, and anybody knows the password"
                " of the sample account. To make it all the same, add --force.");
        isNew = accountId.has_value();
        if (isNew)
            fillAccount(connection, *accountId, now);
    });
    return isNew;
}

} // namespace tarvex::requests
