#include "Installation.h"
#include "NewAccounts.h"
#include "NewInvitations.h"
#include "SampleAccount.h"
#include "SampleRows.h"
#include "ServiceFixture.h"
#include "Sets.h"

using namespace tarvex;
using requests::Outcome;

namespace {

struct Requests : ServiceFixture
{
    /// Takes the steps of a sample file one after the other.
    void converse(const std::string &file)
    {
        for (const SampleRow &row : sampleRows(file))
            EXPECT_EQ(shown(step(row[0]), row[1]), row[2]) << row[0].substr(0, 200);
    }

    /// Makes the request, in which names in braces stand for credentials, and returns its answer. It may come
    /// to a service that is busy or takes it for too large, or from somewhere; time may pass instead, or the
    /// service get other rules for signing up.
    std::string step(std::string request)
    {
        for (const auto &[name, credentials] : m_people)
            boost::replace_all(request, "{" + name + "}", credentials);
        boost::smatch guess;
        if (boost::regex_search(request, guess, boost::regex(R"(\{guess at (\w+)\})")))
            boost::replace_all(request, guess.str(), credentials(guess[1], "wrong"));
        const auto colon = request.find(": ");
        const std::string how = request.substr(0, colon == std::string::npos ? 0 : colon + 2);
        const std::string rest = request.substr(how.size());
        if (how == "busy: ")
            return m_service.refuse(rest, Outcome::Busy).body;
        if (how == "too large: ")
            return m_service.refuse(rest, Outcome::TooLarge).body;
        if (how.starts_with("from "))
            return answerTo(rest, how).body;
        if (how == "seconds pass: ") {
            m_now += std::chrono::seconds(std::stoi(rest));
            m_seconds += std::stoi(rest);
        } else if (how == "sign-up: ") {
            serveWith(m_signUpRules.at(rest));
        } else if (how == "another process: ") {
            serveWith({});
            return post(rest);
        } else {
            return post(request);
        }
        return "";
    }

    const std::vector<std::string> m_codes =
        requests::createInvitations(m_database, /*count=*/3, /*expiresAt=*/m_seconds + 100);
    const std::map<std::string, std::string> m_people = {
        {"anna", credentials(m_login, m_password)},
        {"anna in lower case", credentials("anna@example.org", m_password)},
        {"anna in upper case", credentials("ANNA@example.org", m_password)},
        {"ben", credentials("ben@example.org", "b")},
        {"guess", credentials(m_login, "wrong")},
        {"nobody", credentials("nobody@example.org", "wrong")},
        {"sample", credentials("sample@example.org", "wheel of life")},
        {"code", m_codes[0]},
        {"typed code", boost::to_lower_copy(boost::replace_all_copy(m_codes[1], "-", " "))},
        {"late code", m_codes[2]},
    };
    const std::map<std::string, requests::SignUpRules> m_signUpRules = {
        {"closed", {.mode = requests::SignUpRules::Mode::Closed}},
        {"full at two", {.mostAccounts = 2}},
        {"by invitation", {.mode = requests::SignUpRules::Mode::Invitation}},
    };
};

struct Conversation : Requests, testing::WithParamInterface<std::string>
{
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Requests, Conversation, testing::ValuesIn(samplesIn("conversations")),
                         [](const auto &sample) { return sample.param; });

TEST_P(Conversation, GoesAsWritten)
{
    converse("conversations/" + GetParam() + ".txt");
}

TEST_F(Requests, TheCodeOfAnInvitationIsKeptNowhere)
{
    serveWith({.mode = requests::SignUpRules::Mode::Invitation});
    EXPECT_EQ(signUp("b@example.org", "p", "Ben B. - " + m_codes[0] + " "), R"({"result":"OK"})");
    m_seconds += 40LL * 24 * 60 * 60;
    m_now += std::chrono::hours(40 * 24);
    m_service.keepHouse(); // the other two have expired
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM account WHERE name = 'Ben B.'"), 1);
    EXPECT_EQ(numberOf("SELECT COUNT(*) FROM invitation"), 0);
}

TEST_F(Requests, ARequestThatWaitedTooLongIsNotBegun)
{
    const auto turn = begun(asAnna("create-sets", "&p4=late"));
    ASSERT_EQ(turn->step(), requests::Turn::Step::Hash);
    m_service.verify(*turn);
    m_now += requests::Service::patience + std::chrono::seconds(1);
    EXPECT_EQ(m_service.finish(*turn).outcome, Outcome::Busy);
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "[1]");
}

TEST_F(Requests, OnlyFailuresCountHoweverManySignInAtOnce)
{
    for (const auto &[password, expected] : {std::pair("wrong", 10), std::pair(m_password.c_str(), 40)}) {
        std::vector<std::unique_ptr<requests::Turn>> turns;
        turns.reserve(40);
        for (int i = 0; i < 40; ++i)
            turns.push_back(begun("p1=sign-in" + credentials(m_login, password), "192.0.2.1"));
        int checked = 0;
        for (const auto &turn : turns) {
            m_service.verify(*turn);
            checked += m_service.finish(*turn).outcome == Outcome::TooManyAttempts ? 0 : 1;
        }
        EXPECT_EQ(checked, expected);
        m_now += std::chrono::seconds(60);
        m_seconds += 60;
    }
}

TEST_F(Requests, StrangersDoNotLockAnOwnerOut)
{
    const auto signIn = [&](const std::string &password, const std::string &peer) {
        return answerTo("p1=sign-in" + credentials(m_login, password), peer).outcome;
    };
    for (int i = 0; i < 99; ++i)
        EXPECT_EQ(signIn("wrong", std::to_string(i)), Outcome::NotSignedIn);
    EXPECT_EQ(signIn(m_password, "0"), Outcome::TooManyAttempts);
    EXPECT_EQ(signIn(m_password, "her own"), Outcome::Done);
    EXPECT_EQ(signIn("wrong", "another"), Outcome::NotSignedIn);
    serveWith({});
    EXPECT_EQ(signIn(m_password, "her own"), Outcome::TooManyAttempts);
}

TEST_F(Requests, NobodyCanMakeItForgetTheRefusedSaveOfAnother)
{
    postAsAnna("create-some-goals", "&p4=" + goal("kept"));
    postAsAnna("create-some-goals", "&p4=broken");
    for (int i = 0; i <= 10'000; ++i)
        m_service.refuse("p1=create-some-goals" + credentials(std::to_string(i), "x"), Outcome::Busy);
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;"), "Error");
}

TEST_F(Requests, WhatWasDeletedIsGoneAfterThirtyDaysOfRunning)
{
    postAsAnna("create-some-goals", "&p4=" + goal("deleted"));
    postAsAnna("delete-some-goals", "&p4=1;");
    const auto goalsAfter = [&](int days) {
        m_now += std::chrono::hours(24 * days);
        m_seconds += 24LL * 60 * 60 * days;
        m_service.keepHouse();
        return numberOf("SELECT COUNT(*) FROM goal");
    };
    EXPECT_EQ(goalsAfter(29), 1);
    EXPECT_EQ(goalsAfter(2), 0);
}

TEST_F(Requests, WhatAnotherProcessChangesIsSeenAtOnce)
{
    store::Database same(databaseUrl(m_folder));
    requests::Service other(same, m_hash, clocks());
    const auto change = [&](const std::string &name) {
        const auto turn = other.begin(
            {.body = asAnna("set-sets-name", "&p4=" + name + "&p5=1"), .peer = "", .arrival = m_now});
        EXPECT_EQ(other.finish(*turn).body, "OK");
    };
    for (const std::string name : {"one", "two", "three"}) {
        change(name);
        for (int again = 0; again < 3; ++again)
            EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[" + name + "]");
        EXPECT_EQ(postAsAnna("set-sets-name", "&p4=mine&p5=1"), "OK");
        EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[mine]");
    }
}

TEST_F(Requests, AnAccountHoldsNoMoreThanItMay)
{
    const std::string list = boost::algorithm::join(std::vector(5'000, goal("x")), "");
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + list), "OK");
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("x")), "Error");
    postAsAnna("get-sets"); // nor is that a refused save for ever
    EXPECT_EQ(postAsAnna("delete-goal", "&p4=1"), "OK");
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("y")), "OK");
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("z")), "Error");
    EXPECT_EQ(postAsAnna("delete-sets", "&p4=1"), "OK");
    EXPECT_EQ(postAsAnna("create-sets", "&p4=x"), "OK");
    m_database.write([&, account = anna()](store::Connection &connection) {
        for (int i = 0; i < 499; ++i)
            store::createSet(connection, account, "x", m_seconds);
    });
    EXPECT_EQ(postAsAnna("create-sets", "&p4=x"), "Error");
    const std::string large =
        boost::replace_all_copy(goal(std::string(60'000, 'x')), "setsId:1;", "setsId:2;");
    int saved = 0;
    for (bool isSaved = true; isSaved; ++saved)
        isSaved = postAsAnna("create-some-goals",
                             "&p4=" + boost::algorithm::join(std::vector(50, large), "")) == "OK";
    EXPECT_EQ(saved - 1, 16 * 1024 * 1024 / (50 * 60'000));
}

TEST(Installation, FindsAccountsFromBeforeItHadASecretAndTakesNoOther)
{
    const TemporaryFolder folder;
    store::Database database(databaseUrl(folder));
    const std::string digest = security::signInDigest("anna@example.org");
    const auto isFound = [&](const std::string &login) {
        std::optional<store::Credentials> found;
        database.read([&](store::Connection &connection) { found = findCredentials(connection, login); });
        return found.has_value();
    };
    database.write([&](store::Connection &connection) {
        store::createAccount(connection, requests::newAccount({digest}, "Anna", "hash", /*now=*/0));
    });
    for (int start = 0; start < 2; ++start) {
        const auto hash = requests::openInstallation(database, folder.path() / "secret");
        EXPECT_TRUE(isFound(requests::loginKey(hash, digest)));
    }
    EXPECT_FALSE(isFound(digest));
    EXPECT_EQ(std::filesystem::status(folder.path() / "secret").permissions(), std::filesystem::perms(0600));
    EXPECT_THROW(requests::openInstallation(database, folder.path() / "lost"), store::CannotOpen);
    std::ofstream(folder.path() / "other") << std::string(64, '0');
    EXPECT_THROW(requests::openInstallation(database, folder.path() / "other"), store::CannotOpen);
    std::ofstream(folder.path() / "damaged") << std::string(63, '0');
    EXPECT_THROW(requests::openInstallation(database, folder.path() / "damaged"), std::runtime_error);
}

TEST_F(Requests, TheSampleAccountIsMadeOnceAndShowsAWheel)
{
    EXPECT_TRUE(requests::createSampleAccount(m_database, m_hash, /*besideOthers=*/true, m_seconds));
    EXPECT_FALSE(requests::createSampleAccount(m_database, m_hash, /*besideOthers=*/true, m_seconds));
    converse("sample-account.txt");
}

TEST_F(Requests, ASaveAlwaysHoldsWhateverTheGoalsOfAnAreaWere)
{
    const std::string list = boost::algorithm::join(std::vector(30, goal(std::string(60'000, 'x'))), "");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + list), "OK");
    const std::string goals = postAsAnna("get-goals", "&p4=1&p5=3");
    EXPECT_LE(goals.size(), 4U * 1024 * 1024);
    std::string ids = boost::erase_all_copy(column(goals, "id"), "[");
    boost::replace_all(ids, "]", ";");
    EXPECT_GT(ids.size(), 60U);
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=" + ids), "OK");
    EXPECT_NE(column(postAsAnna("get-goals", "&p4=1&p5=3"), "name"), ""); // those beyond one save show up now
}
