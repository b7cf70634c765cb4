// The service against a model of what it should hold: seeded histories of all kinds of requests, from several
// clients over accounts of their own and shared ones.

#include "Administration.h"
#include "HttpFixture.h"
#include "Progress.h"

#include <algorithm>
#include <boost/regex.hpp>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <map>
#include <random>
#include <set>

using namespace tarvex;

namespace {

struct ModelGoal
{
    int set = 0;
    int area = 0;
    std::string name;
    int priority = 0;
    bool isChecked = false;
};

struct ModelAccount
{
    std::string login;
    std::vector<std::string> areaNames = {
        "Health",          "Career and Business", "Finance", "Family {_amp_} Friends",
        "Personal Growth", "Fun and Recreation",  "Home",    "Romance"};
    std::vector<int> areaValues = std::vector<int>(8);
    std::map<int, std::string> sets = {{1, "My wheel"}};
    int nextSet = 2;
    std::map<int, ModelGoal> goals;
    int nextGoal = 1;
    std::set<std::pair<int, int>> refusedSaves; // after which a delete there is refused, once

    int percent(int set, int area) const
    {
        int count = 0;
        int checked = 0;
        for (const auto &[id, goal] : goals)
            if (goal.set == set && goal.area == area) {
                ++count;
                checked += goal.isChecked ? 1 : 0;
            }
        return count == 0 ? 100 : checked * 100 / count;
    }
    bool hasPlace(int set, int area) const { return sets.contains(set) && area >= 1 && area <= 8; }
};

/// One history: an account or two, several clients, and what they ask for, drawn from a seed.
class History
{
public:
    History(std::uint16_t port, unsigned seed) : m_random(seed)
    {
        for (int i = 0; i < 3; ++i)
            m_clients.push_back(std::make_unique<RawClient>(port));
        for (const char *name : {"a", "b"}) {
            ModelAccount &account = m_accounts.emplace_back();
            account.login = name + std::to_string(seed) + "@example.org";
            m_account = &account;
            EXPECT_EQ(post("p1=create-new-user&p2=" + account.login + "&p3=x&p4=N&type=json"),
                      R"({"result":"OK"})");
        }
    }

    void step()
    {
        m_account = &m_accounts[below(3) == 0 ? 1 : 0];
        using Step = void (History::*)();
        static constexpr Step steps[] = {&History::signIn,     &History::createSet,  &History::renameSet,
                                         &History::deleteSet,  &History::renameArea, &History::setValue,
                                         &History::createGoal, &History::createGoal, &History::saveGoals,
                                         &History::saveGoals,  &History::deleteGoal, &History::deleteGoals,
                                         &History::check,      &History::readGoals,  &History::drawGoal};
        (this->*steps[below(std::size(steps))])();
    }

    void readAll()
    {
        for (ModelAccount &account : m_accounts) {
            m_account = &account;
            readAreas();
            readSets();
            for (int set = 1; set < account.nextSet; ++set)
                readGoalsOf(set);
        }
    }

    /// What is noted of the sets must be what they are at last.
    void readProgress(store::Database &database, const security::KeyedHash &hash)
    {
        constexpr std::int64_t afterAll = 1'000'000;
        for (ModelAccount &account : m_accounts) {
            const std::int64_t id = requests::accountOfLogin(database, hash, account.login);
            database.read([&](store::Connection &connection) {
                for (const auto &[set, name] : account.sets) {
                    const auto noted = store::percentsOn(connection, id, set, afterAll).value();
                    for (int area = 1; area <= 8; ++area)
                        EXPECT_EQ(noted.numbers.at(static_cast<std::size_t>(area) - 1),
                                  account.percent(set, area));
                }
                const auto values = store::valuesOn(connection, id, afterAll).value().numbers;
                EXPECT_TRUE(std::equal(values.begin(), values.end(), account.areaValues.begin()));
            });
        }
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }
    int oneOf(int next) { return 1 + static_cast<int>(below(static_cast<std::size_t>(next) + 1)); }
    int aSet() { return oneOf(m_account->nextSet); }
    int anArea() { return oneOf(8); }
    int aGoal() { return oneOf(m_account->nextGoal); }
    std::string aName() { return std::string(1 + below(3), static_cast<char>('a' + below(26))); }

    std::string post(const std::string &body)
    {
        return m_clients[below(m_clients.size())]->post(body).body();
    }
    std::string ask(const std::string &kind, const std::vector<std::string> &fields = {})
    {
        std::string body = "p1=" + kind + "&p2=" + security::signInDigest(m_account->login) +
                           "&p3=" + security::signInDigest("x");
        for (std::size_t i = 0; i < fields.size(); ++i)
            body.append("&p").append(std::to_string(i + 4)).append("=").append(fields[i]);
        return post(body);
    }
    static std::string word(bool isDone) { return isDone ? "OK" : "Error"; }

    void signIn()
    {
        EXPECT_EQ(ask("sign-in"), "OK");
        EXPECT_EQ(post("p1=create-new-user&p2=" + m_account->login + "&p3=x&p4=N&type=json").find("OK"),
                  std::string::npos);
    }
    void createSet()
    {
        const std::string name = aName();
        EXPECT_EQ(ask("create-sets", {name}), "OK");
        m_account->sets[m_account->nextSet++] = name;
    }
    void renameSet()
    {
        const int set = aSet();
        const std::string name = aName();
        EXPECT_EQ(ask("set-sets-name", {name, std::to_string(set)}), word(m_account->sets.contains(set)));
        if (m_account->sets.contains(set))
            m_account->sets[set] = name;
    }
    void deleteSet()
    {
        const int set = aSet();
        EXPECT_EQ(ask("delete-sets", {std::to_string(set)}), word(m_account->sets.erase(set) == 1));
        std::erase_if(m_account->goals, [set](const auto &goal) { return goal.second.set == set; });
    }
    void renameArea()
    {
        const int area = anArea();
        const std::string name = aName();
        EXPECT_EQ(ask("set-area-names", {"id:" + std::to_string(area) + ";name:" + name + ";{_end_}"}),
                  word(area <= 8));
        if (area <= 8)
            m_account->areaNames.at(static_cast<std::size_t>(area) - 1) = name;
    }
    void setValue()
    {
        const int area = anArea();
        const int value = static_cast<int>(below(101));
        EXPECT_EQ(ask("set-area-value", {std::to_string(area), std::to_string(value)}), word(area <= 8));
        if (area <= 8)
            m_account->areaValues.at(static_cast<std::size_t>(area) - 1) = value;
    }

    ModelGoal newGoal() { return {aSet(), anArea(), aName(), static_cast<int>(below(10)), below(2) == 0}; }
    bool keep(const ModelGoal &goal)
    {
        if (m_account->hasPlace(goal.set, goal.area))
            m_account->goals[m_account->nextGoal++] = goal;
        return m_account->hasPlace(goal.set, goal.area);
    }
    void createGoal()
    {
        const ModelGoal goal = newGoal();
        EXPECT_EQ(ask("create-goal", {goal.name, std::to_string(goal.priority), goal.isChecked ? "1" : "0",
                                      std::to_string(goal.set), std::to_string(goal.area)}),
                  word(keep(goal)));
    }
    void saveGoals()
    {
        std::string list;
        bool isAnyKept = false;
        std::optional<std::pair<int, int>> place; // which the list is taken to be for
        for (std::size_t i = 0; i <= below(4); ++i) {
            const ModelGoal goal = newGoal();
            list += "name:" + goal.name + ";priority:" + std::to_string(goal.priority) +
                    ";checked:" + (goal.isChecked ? "1" : "0") + ";setsId:" + std::to_string(goal.set) +
                    ";areaId:" + std::to_string(goal.area) + ";{_end_}";
            isAnyKept = keep(goal) || isAnyKept;
            place = place.value_or(std::pair(goal.set, goal.area));
        }
        m_account->refusedSaves.erase(*place);
        if (!isAnyKept)
            m_account->refusedSaves.insert(*place);
        EXPECT_EQ(ask("create-some-goals", {list}), word(isAnyKept));
    }
    void deleteGoal()
    {
        const int goal = aGoal();
        EXPECT_EQ(ask("delete-goal", {std::to_string(goal)}), word(m_account->goals.erase(goal) == 1));
    }
    void deleteGoals()
    {
        std::string ids;
        std::vector<int> deleted;
        for (std::size_t i = 0; i <= below(3); ++i) {
            const int goal = aGoal();
            ids += std::to_string(goal) + ";";
            deleted.push_back(goal);
        }
        const bool isRefused = std::erase_if(m_account->refusedSaves, [&](const auto &place) {
                                   return std::any_of(deleted.begin(), deleted.end(), [&](int id) {
                                       const auto goal = m_account->goals.find(id);
                                       return goal != m_account->goals.end() &&
                                              place == std::pair(goal->second.set, goal->second.area);
                                   });
                               }) > 0;
        EXPECT_EQ(ask("delete-some-goals", {ids}), word(!isRefused));
        for (const int goal : deleted)
            if (!isRefused)
                m_account->goals.erase(goal);
    }
    void check()
    {
        const int id = aGoal();
        const auto goal = m_account->goals.find(id);
        std::string percent;
        if (goal != m_account->goals.end()) {
            goal->second.isChecked = true;
            percent = std::to_string(m_account->percent(goal->second.set, goal->second.area));
        }
        EXPECT_EQ(ask("set-checked-area-percent", {"0", std::to_string(id)}), percent);
    }
    void readGoals()
    {
        const int set = aSet();
        const int area = anArea();
        const std::string answer = ask("get-goals", {std::to_string(set), std::to_string(area)});
        std::string expected;
        for (const auto &[id, goal] : m_account->goals)
            if (goal.set == set && goal.area == area)
                expected += shown(id, goal);
        EXPECT_EQ(m_account->hasPlace(set, area) ? shown(answer) : answer,
                  m_account->hasPlace(set, area) ? expected : "Error");
    }
    void drawGoal()
    {
        const int set = aSet();
        const std::string answer = ask("get-random-goal", {std::to_string(set)});
        std::set<std::string> possible;
        for (const auto &[id, goal] : m_account->goals)
            if (goal.set == set && !goal.isChecked)
                possible.insert(shown(id, goal));
        EXPECT_TRUE(possible.empty() ? answer == "Error" : possible.contains(shown(answer))) << answer;
    }

    static std::string shown(int id, const ModelGoal &goal)
    {
        return "[" + std::to_string(id) + "," + goal.name + "," + std::to_string(goal.priority) +
               (goal.isChecked ? ",y]" : ",n]");
    }
    /// The goals of an answer in the same form.
    static std::string shown(const std::string &answer)
    {
        static const boost::regex record(
            R"(<id>([^<]*)</id>.*?<name>([^<]*)</name>.*?<priority>([^<]*)</priority>.*?<checked>([^<]*)</checked>)");
        std::string all;
        for (boost::sregex_iterator found(answer.begin(), answer.end(), record), end; found != end; ++found)
            all += "[" + (*found)[1] + "," + (*found)[2] + "," + (*found)[3] + "," + (*found)[4] + "]";
        return all;
    }

    void readGoalsOf(int set)
    {
        std::map<std::pair<int, int>, std::string> inOrder;
        for (const auto &[id, goal] : m_account->goals)
            if (goal.set == set)
                inOrder[{goal.area, id}] = shown(id, goal);
        std::string expected;
        for (const auto &[place, text] : inOrder)
            expected += text;
        EXPECT_EQ(shown(ask("get-complex-goals-for-sets", {std::to_string(set)})), expected);
    }
    void readAreas()
    {
        const std::string answer = ask("get-areas");
        std::string names;
        std::string values;
        for (std::size_t i = 0; i < 8; ++i) {
            names += "[" + m_account->areaNames[i] + "]";
            values += "[" + std::to_string(m_account->areaValues[i]) + "]";
        }
        EXPECT_EQ(Http::column(answer, "name"), names);
        EXPECT_EQ(Http::column(answer, "value"), values);
    }
    void readSets()
    {
        std::vector<int> order;
        for (const auto &[id, name] : m_account->sets)
            order.push_back(id);
        if (!order.empty())
            std::reverse(order.begin() + 1, order.end());
        std::string names;
        std::string percents;
        for (const int id : order) {
            names += "[" + m_account->sets[id] + "]";
            percents += "[" + std::to_string(m_account->percent(id, /*area=*/3)) + "]";
        }
        const std::string answer = ask("get-sets");
        EXPECT_EQ(Http::column(answer, "name"), names);
        EXPECT_EQ(Http::column(answer, "percent3"), percents);
    }

    std::mt19937 m_random;
    std::vector<std::unique_ptr<RawClient>> m_clients;
    std::deque<ModelAccount> m_accounts;
    ModelAccount *m_account = nullptr;
};

} // namespace

TEST_F(Http, HoldsWhatAModelHoldsAfterAnyHistory)
{
    start();
    const char *const asked = std::getenv("TARVEX_HISTORIES"); // for a longer run
    const unsigned count = asked != nullptr ? static_cast<unsigned>(std::atoi(asked)) : 60;
    const char *const told = std::getenv("TARVEX_SEED"); // of one that went wrong
    const unsigned first = told != nullptr ? static_cast<unsigned>(std::stoul(told)) : std::random_device()();
    for (unsigned seed = first; seed != first + count && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        History history(port(), seed);
        for (int i = 0; i < 30; ++i)
            history.step();
        history.readAll();
        history.readProgress(m_database, m_hash);
    }
    std::cout << count << " histories\n";
}
