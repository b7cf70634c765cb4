#include "SampleAccount.h"
#include "ServiceFixture.h"

using namespace tarvex;
using requests::Outcome;

using Requests = ServiceFixture;

namespace {

constexpr const char *wrongLogin = "The login or the password is wrong.";
constexpr const char *tooMany = "Too many failed attempts. Please wait a minute and try again.";

} // namespace

TEST_F(Requests, ANewAccountHasEightNamedAreasAndOneSet)
{
    const std::string areas = postAsAnna("get-areas");
    EXPECT_EQ(column(areas, "id"), "1|2|3|4|5|6|7|8|");
    EXPECT_EQ(column(areas, "name"),
              "Health|Career and Business|Finance|Family {_amp_} Friends|Personal Growth|"
              "Fun and Recreation|Home|Romance|");
    EXPECT_EQ(column(areas, "value"), "0|0|0|0|0|0|0|0|");
    const std::string sets = postAsAnna("get-sets");
    EXPECT_EQ(column(sets, "id"), "1|");
    for (const char *percent : {"percent1", "percent8"})
        EXPECT_EQ(column(sets, percent), "100|");
}

TEST_F(Requests, SignInTakesTheLoginAsTypedAndInLowerCase)
{
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
    EXPECT_EQ(post("p1=sign-in" + credentials("anna@example.org", m_password)), "OK");
    EXPECT_EQ(post("p1=sign-in" + credentials("ANNA@example.org", m_password)), wrongLogin);
}

TEST_F(Requests, RefusalsAreWordedForTheKindAndTellNothingOfTheLogin)
{
    for (const std::string &wrong :
         {credentials(m_login, "wrong"), credentials("nobody@example.org", "wrong"), std::string("&p2=x"),
          std::string()}) {
        EXPECT_EQ(post("p1=sign-in" + wrong), wrongLogin);
        EXPECT_EQ(post("p1=get-sets" + wrong), "Error");
        EXPECT_EQ(post("p1=delete-sets" + wrong + "&p4=1"), "Error");
        EXPECT_EQ(post("p1=set-checked-area-percent" + wrong + "&p5=1"), "");
    }
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "1|");
}

TEST_F(Requests, WrongPasswordsAreLimitedByLogin)
{
    const std::string wrong = "p1=sign-in" + credentials(m_login, "wrong");
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(post(wrong), wrongLogin);
    EXPECT_EQ(post(wrong), tooMany);
    EXPECT_EQ(postAsAnna("sign-in"), tooMany);
    m_now += std::chrono::minutes(1);
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(post(wrong), wrongLogin);
    EXPECT_EQ(postAsAnna("sign-in"), "OK"); // verified before, so nobody can lock Anna out
}

TEST_F(Requests, WrongPasswordsAreLimitedByPeerUnlessItHasNoName)
{
    for (int i = 0; i < 12; ++i) {
        const std::string body = "p1=sign-in" + credentials("user" + std::to_string(i), "wrong");
        EXPECT_EQ(answerTo(body, "192.0.2.1").outcome,
                  i < 10 ? Outcome::NotSignedIn : Outcome::TooManyAttempts);
        EXPECT_EQ(answerTo(body).outcome, Outcome::NotSignedIn);
    }
}

TEST_F(Requests, SignUpIsRefusedWithAReason)
{
    const std::string longText(2000, 'x');
    const std::vector<std::array<std::string, 4>> rows = {
        {"anna@example.org", "p", "n", "An account with this e-mail address already exists."},
        {"ANNA@EXAMPLE.ORG", "p", "n", "An account with this e-mail address already exists."},
        {"anna.example.org", "p", "n", "The e-mail address is not valid."},
        {"a@b@example.org", "p", "n", "The e-mail address is not valid."},
        {"a b@example.org", "p", "n", "The e-mail address is not valid."},
        {"a@example.o1", "p", "n", "The e-mail address is not valid."},
        {"a@.org", "p", "n", "The e-mail address is not valid."},
        {"", "p", "n", "You must fill in all fields."},
        {"b@example.org", "", "n", "You must fill in all fields."},
        {"b@example.org", "p", "", "You must fill in all fields."},
        {longText + "@example.org", "p", "n", "The e-mail address is too long."},
        {"b@example.org", longText, "n", "The name or the password is too long."},
    };
    for (const auto &[email, password, name, message] : rows)
        EXPECT_EQ(signUp(email, password, name), R"({"result":"Error","message":")" + message + R"("})");
    EXPECT_EQ(post("p1=create-new-user&p2=b@example.org&p3=p&p4=n&type=jso"),
              R"({"result":"Error","message":"The sign-up could not be read."})");
}

TEST_F(Requests, UnknownKindsAndMissingFieldsAreErrors)
{
    for (const char *body : {"", "p1=", "p1=get-everything", "garbage", "&&&===", "p2=x&p1=create-new-user"})
        EXPECT_EQ(post(body), "Error") << body;
    for (const char *kind : {"get-goals", "get-complex-goals-for-sets", "get-random-goal", "create-sets",
                             "set-sets-name", "delete-sets", "set-area-names", "set-area-value",
                             "create-goal", "create-some-goals", "delete-goal", "delete-some-goals"})
        EXPECT_EQ(postAsAnna(kind), "Error") << kind;
}

TEST_F(Requests, SetsAreCreatedRenamedAndDeleted)
{
    EXPECT_EQ(postAsAnna("create-sets", "&p4= +\t\n<\xC3\xAB{_amp_}"), "OK");
    EXPECT_EQ(postAsAnna("create-sets", "&p4="), "OK");
    EXPECT_EQ(postAsAnna("create-sets", "&p4=newest"), "OK");
    EXPECT_EQ(postAsAnna("set-sets-name", "&p4=First&p5=1"), "OK");
    EXPECT_EQ(postAsAnna("set-sets-name", "&p4=Other&p5=99"), "Error");
    EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "First|newest|| +\t\n&lt;\xC3\xAB{_amp_}|");
    EXPECT_EQ(postAsAnna("delete-sets", "&p4=1"), "OK");
    EXPECT_EQ(postAsAnna("delete-sets", "&p4=1"), "Error");
    for (const char *id : {"02", "2 ", "-2", "4294967298", "two", ""})
        EXPECT_EQ(postAsAnna("delete-sets", std::string("&p4=") + id), "Error") << id;
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "2|4|3|");
}

TEST_F(Requests, ADeletedSetTakesItsGoalsOutOfReach)
{
    postAsAnna("create-some-goals", "&p4=" + goal("goal"));
    EXPECT_EQ(postAsAnna("delete-sets", "&p4=1"), "OK");
    for (const char *kind : {"get-complex-goals-for-sets", "get-random-goal", "delete-goal"})
        EXPECT_EQ(postAsAnna(kind, "&p4=1"), "Error") << kind;
    EXPECT_EQ(postAsAnna("set-checked-area-percent", "&p5=1"), "");
}

TEST_F(Requests, AreasAreRenamedAndValued)
{
    EXPECT_EQ(postAsAnna("set-area-names",
                         "&p4=id:2;name:Work;{_end_}id:99;name:No;{_end_}id:1;name:X{_end_}Y;{_end_}"),
              "OK");
    EXPECT_EQ(postAsAnna("set-area-names", "&p4=id:99;name:No;{_end_}"), "Error");
    EXPECT_EQ(postAsAnna("set-area-value", "&p4=2&p5=-7"), "OK");
    EXPECT_EQ(postAsAnna("set-area-value", "&p4=9&p5=1"), "Error");
    EXPECT_EQ(postAsAnna("set-area-value", "&p4=2&p5=1.5"), "Error");
    const std::string areas = postAsAnna("get-areas");
    EXPECT_TRUE(column(areas, "name").starts_with("X{_end_}Y|Work|Finance|"));
    EXPECT_EQ(column(areas, "value"), "0|-7|0|0|0|0|0|0|");
}

TEST_F(Requests, GoalFieldsCrossAsTheProtocolSays)
{
    EXPECT_EQ(postAsAnna("create-goal", "&p4=Read&p5=9&p6=1&p7=1&p8=3"), "OK"); // set 1, area 3
    EXPECT_EQ(postAsAnna("create-goal", "&p4=Lost&p5=9&p6=1&p7=3&p8=1"), "Error");
    const std::string goals = postAsAnna("get-goals", "&p4=1&p5=3");
    EXPECT_EQ(column(goals, "id") + column(goals, "name") + column(goals, "priority") +
                  column(goals, "checked"),
              "1|Read|9|y|");
    EXPECT_EQ(postAsAnna("get-goals", "&p4=3&p5=1"), "Error");
    EXPECT_EQ(column(postAsAnna("get-complex-goals-for-sets", "&p4=1"), "area"), "3|");
}

TEST_F(Requests, PercentagesAreTruncatedAndFollowEveryChange)
{
    postAsAnna("create-some-goals", "&p4=" + goal("a") + goal("b") + goal("c"));
    EXPECT_EQ(column(postAsAnna("get-sets"), "percent3"), "0|");
    EXPECT_EQ(postAsAnna("set-checked-area-percent", "&p5=1"), "33");
    EXPECT_EQ(postAsAnna("set-checked-area-percent", "&p5=1"), "33");
    EXPECT_EQ(postAsAnna("set-checked-area-percent", "&p5=3"), "66");
    EXPECT_EQ(postAsAnna("set-checked-area-percent", "&p5=4"), "");
    EXPECT_EQ(postAsAnna("delete-goal", "&p4=2"), "OK");
    EXPECT_EQ(postAsAnna("delete-goal", "&p4=2"), "Error");
    EXPECT_EQ(column(postAsAnna("get-sets"), "percent3"), "100|");
}

TEST_F(Requests, TheRandomGoalIsAnUndoneOneInPureAscii)
{
    EXPECT_EQ(postAsAnna("get-random-goal", "&p4=1"), "Error");
    postAsAnna("create-some-goals",
               "&p4=" + goal("d", 1, 2, true) + goal("\xC3\xAB", 1, 5) + goal("e", 1, 6, true));
    const std::string answer = postAsAnna("get-random-goal", "&p4=1");
    EXPECT_EQ(column(answer, "id") + column(answer, "name") + column(answer, "area"), "2|&#235;|5|");
}

TEST_F(Requests, OneAccountNeverSeesAnother)
{
    postAsAnna("create-some-goals", "&p4=" + goal("hers"));
    signUp("ben@example.org", "b", "Ben");
    const std::string ben = credentials("ben@example.org", "b");
    EXPECT_EQ(post("p1=set-checked-area-percent" + ben + "&p5=1"), "");
    EXPECT_EQ(post("p1=delete-some-goals" + ben + "&p4=1;"), "OK");
    postAsAnna("create-sets", "&p4=hers");
    EXPECT_EQ(post("p1=set-sets-name" + ben + "&p4=his&p5=2"), "Error");
    EXPECT_EQ(post("p1=create-some-goals" + ben + "&p4=" + goal("his", /*set=*/2)), "Error");
    EXPECT_EQ(post("p1=delete-sets" + ben + "&p4=2"), "Error");
    EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "My wheel|hers|");
    EXPECT_EQ(column(post("p1=get-goals" + ben + "&p4=1&p5=3"), "name"), "");
    EXPECT_EQ(goalNames(), "hers|");
}

TEST_F(Requests, ARequestThatWaitedTooLongIsNotBegun)
{
    auto turn = m_service.begin({.body = asAnna("create-sets", "&p4=late"), .peer = "", .arrival = m_now});
    ASSERT_TRUE(turn->needsHashing());
    m_service.verify(*turn);
    m_now += requests::Service::patience + std::chrono::seconds(1);
    EXPECT_EQ(m_service.finish(*turn).outcome, Outcome::Busy);
    EXPECT_EQ(column(postAsAnna("get-sets"), "id"), "1|");
}

TEST_F(Requests, GivingUpOnASignInDoesNotCountAgainstIt)
{
    for (int i = 0; i < 20; ++i) {
        auto turn = m_service.begin({.body = asAnna("sign-in"), .peer = "192.0.2.1", .arrival = m_now});
        EXPECT_EQ(m_service.giveUp(*turn, Outcome::Busy).body,
                  "The service is busy. Please try again in a moment.");
    }
    EXPECT_EQ(answerTo(asAnna("sign-in"), "192.0.2.1").body, "OK");
}

TEST_F(Requests, TheSampleAccountIsMadeOnceAndShowsAWheel)
{
    EXPECT_TRUE(requests::createSampleAccount(m_database));
    EXPECT_FALSE(requests::createSampleAccount(m_database));
    const std::string sample = credentials("sample@example.org", "wheel of life");
    const std::string sets = post("p1=get-sets" + sample);
    EXPECT_EQ(column(sets, "name"), "Autumn 2026|Summer 2026|Spring 2026|");
    std::string percents;
    for (int area = 1; area <= 8; ++area)
        percents += column(sets, "percent" + std::to_string(area)).substr(0, 3);
    EXPECT_EQ(percents, "75|40|10066|33|50|80|25|");
    EXPECT_EQ(column(post("p1=get-areas" + sample), "value"), "6|4|7|5|2|3|8|1|");
}
