// What browsers get, over real connections: what pages show, and what becomes of what should not be sent to
// them.

#include "Administration.h"
#include "PageForm.h"
#include "PagesFixture.h"
#include "WheelPicture.h"

#include <boost/beast/http/write.hpp>
#include <sstream>

using namespace tarvex;
using namespace std::chrono_literals;

namespace {

constexpr const char *everyPage[] = {"/",        "/sign-in",         "/sign-up",       "/wheel",
                                     "/account", "/account/deleted", "/account/close", "/nowhere",
                                     "/twitter"};

} // namespace

TEST(PageForms, ReadsWhatBrowsersSendAndNothingElse)
{
    const auto form = pages::PageForm::read("a=1+2%2B&b=%c3%A9&&c&a%3D=&d=1&d=2");
    ASSERT_TRUE(form);
    EXPECT_EQ(form->field("a"), "1 2+");
    EXPECT_EQ(form->field("b"), "é");
    EXPECT_EQ(form->field("c"), "");
    EXPECT_EQ(form->field("a="), "");
    EXPECT_EQ(form->field("d"), std::nullopt) << "there are two";
    EXPECT_EQ(form->fields("d"), (std::vector<std::string_view>{"1", "2"}));
    EXPECT_EQ(form->field("e"), std::nullopt);
    for (const char *broken :
         {"a=%", "a=%4", "a=%g0", "a=%0g", "%=1", "a=%ff", "a=%c3", "a=%00", "a=%7f", "%01=", "a=\xC3"})
        EXPECT_FALSE(pages::PageForm::read(broken)) << broken;

    EXPECT_EQ(pages::cookieValue("x=1; tarvex=2.ab ;y", "tarvex"), "2.ab");
    EXPECT_EQ(pages::cookieValue("tarvex=1; tarvex=2", "tarvex"), std::nullopt) << "there are two";
    EXPECT_EQ(pages::cookieValue("xtarvex=1;tarvexx=1; ;=;", "tarvex"), std::nullopt);
}

TEST(WheelPictures, AreThoseOfTheClient)
{
    std::array<pages::Slice, pages::sliceCount> slices;
    slices[0] = {.value = 9, .percent = 75, .words = "<\"&", .link = ""};
    slices[1].value = -2;
    slices[2].value = -1;
    const std::string picture = pages::wheelPicture("W", slices);
    const auto holds = [&](const std::string &text) { return picture.find(text) != std::string::npos; };
    EXPECT_TRUE(holds(R"(M215.00 215.00L363.49 66.51A210.00 210.00 0 0 0 215.00 5.00Z" fill="#b699c9")"))
        << picture;
    EXPECT_TRUE(holds(
        R"(M215.00 215.00L363.49 66.51A210.00 210.00 0 0 0 215.00 5.00Z" fill="#fff" fill-opacity="0.7")"));
    EXPECT_TRUE(holds("L194.00 215.00A21.00 21.00 0 0 0 200.15 229.85Z"))
        << "a value of -2 points the other way";
    EXPECT_TRUE(holds("L215.00 215.00")) << "and one of -1 nowhere";
    EXPECT_TRUE(holds("<title>&lt;&quot;&amp;</title>"));
    EXPECT_TRUE(holds("75%"));
}

TEST_F(Pages, AreGuardedEachAndAskNobodyElse)
{
    start();
    Browser stranger(port());
    Browser owner = signedIn();
    for (const char *path : everyPage) {
        for (Browser *browser : {&stranger, &owner}) {
            const std::string page = browser->get(path);
            const std::string policy(browser->last["Content-Security-Policy"]);
            EXPECT_EQ(policy, "default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self';"
                              " frame-ancestors 'none'; base-uri 'none'");
            EXPECT_EQ(browser->last["Cache-Control"], "no-store");
            EXPECT_EQ(browser->last["X-Content-Type-Options"], "nosniff");
            EXPECT_EQ(browser->last["Referrer-Policy"], "same-origin");
            for (const char *bad : {"<script", "style=\"", " onclick", "//", "{{", "}}"})
                EXPECT_EQ(page.find(bad), std::string::npos) << path << " has " << bad;
            EXPECT_NE(page.find("<h1>"), std::string::npos) << path;
        }
    }
    std::size_t bytes = stranger.get("/").size();
    bytes += stranger.get("/style.css").size() + stranger.get("/icon.svg").size();
    EXPECT_LT(bytes, 30U * 1024);
    EXPECT_NE(stranger.get("/manual").find("Tarvex Cloud: the manual"), std::string::npos);
    EXPECT_EQ(stranger.ask("GET", "/manual/pictures/wheel.png")["Content-Type"], "image/png");
    EXPECT_EQ(stranger.ask("GET", "/manual/../Site.cpp").result_int(), 404U);
    EXPECT_EQ(stranger.ask("DELETE", "/wheel").result_int(), 405U);
    EXPECT_EQ(stranger.ask("POST", "/").result_int(), 405U);
    EXPECT_EQ(stranger.last["Allow"], "GET, HEAD");
}

TEST_F(Pages, LeaveTheProtocolAsItIs)
{
    const auto answers = [this] {
        std::string all;
        for (const std::string &request :
             {RawClient::request(asAnna("sign-in")), RawClient::request("p1=x"),
              RawClient::request("p1=create-new-user&p2=a&type=json"),
              RawClient::request(std::string(5'000'000, 'x')),
              std::string("GET /tarvex/ HTTP/1.1\r\nHost: x\r\n\r\n"),
              std::string("POST /tarvex/x HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n"),
              std::string("POST /tarvex/ HTTP/1.1\r\nHost: x\r\n\r\n")}) {
            RawClient client(port());
            client.send(request);
            std::ostringstream text;
            text << client.read();
            all += text.str();
        }
        return all;
    };
    Http::start();
    const std::string without = answers();
    EXPECT_EQ(Browser(port()).ask("GET", "/").body(), "There is nothing here.\n");
    stop();
    start();
    EXPECT_EQ(answers(), without);
}

TEST_F(Pages, ShowTheWheelAsTheProtocolHasIt)
{
    postAsAnna("set-area-value", "&p4=3&p5=8");
    postAsAnna("create-some-goals", "&p4=" + goal("Save {_amp_} spend") + goal("Second") + goal("Third"));
    postAsAnna("set-checked-area-percent", "&p5=2");
    postAsAnna("create-sets", "&p4=Summer");
    start();
    Browser browser = signedIn();
    EXPECT_TRUE(has(browser, "<bdi>Finance</bdi></a></th><td>8</td><td>33%</td>"));
    EXPECT_TRUE(has(browser, "Finance: value 8, 33 percent of its goals done"));
    EXPECT_TRUE(has(browser, "91% done on average")) << "truncated, as in the client";
    EXPECT_TRUE(has(browser, "value=\"1\" aria-describedby=\"tick\"><bdi>Save &amp; spend</bdi>"));
    EXPECT_TRUE(has(browser, "<li class=\"done\"><bdi>Second</bdi></li>"));
    browser.get("/wheel?set=2");
    EXPECT_TRUE(has(browser, "<option value=\"2\" dir=\"auto\" selected>Summer</option>"));
    EXPECT_TRUE(has(browser, "100% done on average"));

    // What one side changes the other one shows.
    browser.get("/wheel");
    browser.post("/wheel", {{"goal", "1"}});
    EXPECT_TRUE(has(browser, "The goal is done."));
    EXPECT_TRUE(has(browser, "<td>66%</td>"));
    EXPECT_EQ(column(postAsAnna("get-goals", "&p4=1&p5=3"), "checked"), "[y][y][n]");
    browser.get("/wheel");
    EXPECT_EQ(browser.get("/wheel"), browser.get("/wheel"));
    postAsAnna("set-checked-area-percent", "&p5=3");
    browser.get("/wheel");
    EXPECT_TRUE(has(browser, "<bdi>Finance</bdi></a></th><td>8</td><td>100%</td>"));
    postAsAnna("delete-some-goals", "&p4=3;");
    browser.post("/wheel", {{"goal", "3"}});
    EXPECT_EQ(browser.status(), 404U);
    EXPECT_TRUE(has(browser, "It was deleted meanwhile"));
    browser.get("/wheel?set=2");
    postAsAnna("delete-sets", "&p4=2");
    browser.get("/wheel?set=2");
    EXPECT_EQ(browser.status(), 404U);
    for (const char *odd : {"set=x", "set=1&set=2", "set=-1", "set=99999999999999999999", "set=%00"}) {
        browser.get(std::string("/wheel?") + odd);
        EXPECT_TRUE(browser.status() == 404U || browser.status() == 400U) << odd;
    }
    postAsAnna("delete-sets", "&p4=1");
    browser.get("/wheel");
    EXPECT_TRUE(has(browser, "You have no set."));
}

TEST_F(Pages, ShowProgressDayByDayAndTwoWheelsSideBySide)
{
    postAsAnna("set-area-value", "&p4=3&p5=2"); // on 1970-01-12
    postAsAnna("create-some-goals", "&p4=" + goal("One") + goal("Two"));
    pass(24h);
    postAsAnna("set-area-value", "&p4=3&p5=8");
    postAsAnna("set-checked-area-percent", "&p5=1");
    postAsAnna("create-sets", "&p4=Summer");
    start();
    Browser browser = signedIn();
    browser.get("/progress?days=31");
    EXPECT_TRUE(
        has(browser, "<th scope=\"row\">1970-01-13</th><td>93%</td><td>100%</td><td>100%</td><td>50%</td>"));
    EXPECT_TRUE(
        has(browser, "<th scope=\"row\">1970-01-12</th><td>87%</td><td>100%</td><td>100%</td><td>0%</td>"));
    EXPECT_TRUE(has(browser, "<title id=\"progress"));
    postAsAnna("set-checked-area-percent", "&p5=2");
    browser.get("/progress?days=31");
    EXPECT_TRUE(has(browser, "<th scope=\"row\">1970-01-13</th><td>100%</td>")) << "not what was just shown";

    browser.get("/progress/compare?first=1&first-day=1970-01-12&second=2&second-day=2999-01-01");
    EXPECT_TRUE(has(browser, "Wheel of My wheel on 1970-01-12"));
    EXPECT_TRUE(has(browser, "Wheel of Summer on 1970-01-13"));
    EXPECT_TRUE(has(browser, "<bdi>Finance</bdi></th><td>2</td><td>8</td><td>0%</td><td>100%</td>"));
    browser.get("/progress/compare?first-day=1970-01-01");
    EXPECT_TRUE(has(browser, "There is nothing from this day yet."));
    for (const char *odd :
         {"first-day=1970-02-30", "first-day=x", "first-day=1969-12-31",
          "first-day=1970-01-12&first-day=", "days=-1", "first-day=%F0%9F%98%80%F0%9F%98%80%F0%9F%98%80"})
        EXPECT_EQ(browser.ask("GET", std::string("/progress/compare?") + odd).result_int(), 200U) << odd;
    EXPECT_EQ(browser.ask("GET", "/progress?set=9").result_int(), 404U);
    EXPECT_EQ(browser.ask("GET", "/progress/compare?second=x").result_int(), 404U);
}

TEST_F(Pages, ShowNamesAsTheyWereWrittenWhateverIsInThem)
{
    const std::string hostile = "<script>alert(1)</script>\"'>\xE2\x80\xAE{{{x}}}</bdi>";
    std::string wireText;
    for (const char character : hostile) {
        wireText += character == '<'   ? "{_tbo_}"
                    : character == '>' ? "{_tbc_}"
                    : character == '/' ? "{_slr_}"
                                       : std::string(1, character);
    }
    postAsAnna("set-sets-name", "&p4=" + wireText + "&p5=1");
    postAsAnna("set-area-names", "&p4=id:3;name:" + wireText + ";{_end_}");
    postAsAnna("create-some-goals", "&p4=" + goal(wireText) + goal(wireText));
    postAsAnna("delete-some-goals", "&p4=2;");
    signUp("m@example.org", "p", hostile);
    start();
    Browser browser = signedIn();
    Browser named(port());
    named.signIn("m@example.org", "p");
    const auto clean = [](std::string page) {
        std::size_t shown = 0;
        for (const std::string part : {"&lt;script&gt;alert(1)&lt;/script&gt;&quot;"})
            for (auto at = page.find(part); at != std::string::npos; at = page.find(part, at + 1))
                ++shown;
        EXPECT_EQ(page.find("<script"), std::string::npos);
        return shown;
    };
    EXPECT_GE(clean(browser.get("/wheel")), 7U) << "the set twice, the area four times, the goal";
    EXPECT_GE(clean(browser.get("/account/deleted")), 3U);
    EXPECT_EQ(clean(named.get("/account")), 1U);
    EXPECT_NE(named.last.body().find("{{{x}}}"), std::string::npos) << "a name is no template";
}

TEST_F(Pages, RefuseFormsAtFaultAndChangeNothing)
{
    postAsAnna("create-some-goals", "&p4=" + goal("Open"));
    start();
    Browser browser = signedIn();
    const std::string token = "token=" + browser.token;
    const std::string otherToken = "token=" + std::string(64, 'a');
    const auto status = [&](const std::string &path, const std::string &body,
                            const std::string &type = "application/x-www-form-urlencoded") {
        const auto response = browser.ask("POST", path, body, type);
        const bool hasWords = response.body().find("<h1>") != std::string::npos;
        EXPECT_TRUE(hasWords || response.result_int() == 303) << path << body.substr(0, 50);
        return response.result_int();
    };
    EXPECT_EQ(status("/wheel", "goal=1"), 403U);
    EXPECT_EQ(status("/wheel", "goal=1&" + otherToken), 403U);
    EXPECT_EQ(status("/wheel", "goal=1&" + token + "&" + token), 403U);
    EXPECT_EQ(status("/wheel", "goal=%zz&" + token), 400U);
    EXPECT_EQ(status("/wheel", "goal=1&" + token, "text/plain"), 400U);
    EXPECT_EQ(status("/wheel", "goal=1&goal=1&" + token), 404U);
    EXPECT_EQ(status("/wheel", token), 404U);
    EXPECT_EQ(status("/wheel", "goal=1&" + token + "&x=" + std::string(600'000, 'x')), 413U);
    EXPECT_EQ(status("/account/deleted", token), 422U);
    EXPECT_EQ(status("/account/deleted", "set=x&" + token), 422U);
    EXPECT_EQ(status("/account/deleted", "set=7&goal=9&" + token), 422U);
    EXPECT_EQ(status("/account/password", "password=x&" + token), 400U);
    EXPECT_EQ(status("/account/close", "password=x&password=x&" + token), 400U);
    EXPECT_EQ(status("/account/close", "password=x&" + token), 403U);
    EXPECT_EQ(status("/account/closed", token), 303U) << "it is not";
    EXPECT_EQ(status("/sign-in", "login=a"), 400U);
    EXPECT_EQ(status("/sign-in", "login=a&password=b&password=c"), 400U);
    EXPECT_EQ(status("/sign-up", "name=a&email=b&password=c&again=c&again=c"), 400U);
    for (const std::string from :
         {"Origin: https://evil.example\r\n", "Origin: null\r\n", "Sec-Fetch-Site: cross-site\r\n",
          "Sec-Fetch-Site: same-site\r\nOrigin: http://localhost\r\n"}) {
        browser.extra = from;
        EXPECT_EQ(status("/wheel", "goal=1&" + token), 403U) << from;
        EXPECT_EQ(status("/sign-in", "login=a&password=b"), 403U) << from;
    }
    EXPECT_EQ(column(postAsAnna("get-goals", "&p4=1&p5=3"), "checked"), "[n]");
    browser.extra = "Origin: http://localhost:1\r\n";
    EXPECT_EQ(status("/wheel", "goal=1&" + token), 303U) << "and so nothing was wrong with the token";
}

TEST_F(Pages, EndSessionsInTime)
{
    start();
    Browser used = signedIn();
    Browser idle = signedIn();
    for (int hour = 11; hour < 14 * 24; hour += 11) {
        pass(11h);
        EXPECT_EQ(used.ask("GET", "/wheel").result_int(), 200U) << hour;
        m_database.write([](store::Connection &) {}); // behind what is noted
    }
    EXPECT_EQ(idle.ask("GET", "/wheel").result_int(), 303U);
    EXPECT_EQ(idle.last["Location"], "/sign-in");
    idle.post("/wheel", {{"goal", "1"}});
    EXPECT_EQ(idle.status(), 403U);
    EXPECT_TRUE(has(idle, "nothing was done"));
    pass(11h);
    EXPECT_EQ(used.ask("GET", "/wheel").result_int(), 303U) << "none lasts longer than 14 days";
}

TEST_F(Pages, EndSessionsWhenTheirOwnerSaysSo)
{
    start();
    Browser first = signedIn();
    Browser second = signedIn();
    const Browser thief = first;
    first.get("/wheel");
    first.get("/wheel");
    first.post("/sign-out", {});
    EXPECT_TRUE(has(first, "You are signed out."));
    EXPECT_TRUE(first.cookies.empty());
    EXPECT_EQ(Browser(thief).ask("GET", "/wheel").result_int(), 303U) << "not even what was just shown";
    EXPECT_EQ(second.ask("GET", "/wheel").result_int(), 200U);
    Browser third = signedIn();
    second.post("/account/sign-out", {});
    EXPECT_EQ(third.ask("GET", "/wheel").result_int(), 303U);

    Browser fourth = signedIn();
    const auto accountId = requests::accountOfLogin(m_database, m_hash, m_login);
    requests::setPassword(m_database, accountId, "another");
    EXPECT_EQ(fourth.ask("GET", "/wheel").result_int(), 303U) << "the password was changed elsewhere";
    m_password = "another";
    Browser fifth = signedIn();
    requests::setDisabled(m_database, accountId, /*isDisabled=*/true);
    EXPECT_EQ(fifth.ask("GET", "/wheel").result_int(), 303U);
    fifth.signIn(m_login, m_password);
    EXPECT_TRUE(has(fifth, "The login or the password is wrong."));
    requests::setDisabled(m_database, accountId, /*isDisabled=*/false);

    std::vector<Browser> many;
    for (std::int64_t i = 0; i <= store::webSessionsPerAccount; ++i) {
        many.push_back(signedIn());
        pass(1s);
    }
    EXPECT_EQ(many[0].ask("GET", "/wheel").result_int(), 303U);
    EXPECT_EQ(many[1].ask("GET", "/wheel").result_int(), 200U);
}

TEST_F(Pages, LetNobodyIntoTheAccountOfAnother)
{
    postAsAnna("create-some-goals", "&p4=" + goal("Secret"));
    postAsAnna("create-sets", "&p4=Hers");
    postAsAnna("delete-sets", "&p4=2");
    signUp("ben@example.org", "b", "Ben");
    start();
    Browser anna = signedIn();
    Browser ben(port());
    ben.signIn("ben@example.org", "b");
    const std::string hers = anna.cookies.at("tarvex");
    const std::string his = ben.cookies.at("tarvex");
    const std::string mixed = hers.substr(0, hers.find('.')) + his.substr(his.find('.'));
    for (const std::string &cookie :
         {mixed, hers + "0", hers.substr(0, hers.size() - 1), "0" + hers + "; tarvex=" + hers,
          std::string("1.x"), std::string("."), "-" + hers,
          hers.substr(0, hers.find('.')) + "." + std::string(64, '0')}) {
        Browser forger(port());
        forger.cookies["tarvex"] = cookie;
        EXPECT_EQ(forger.ask("GET", "/wheel").result_int(), 303U) << cookie;
    }
    ben.token = anna.token;
    ben.post("/wheel", {{"goal", "1"}});
    EXPECT_EQ(ben.status(), 403U) << "another one's token";
    ben.get("/account");
    ben.post("/wheel", {{"goal", "1"}});
    EXPECT_EQ(ben.status(), 404U);
    ben.post("/account/deleted", {{"set", "2"}});
    EXPECT_EQ(ben.status(), 422U);
    for (const char *path :
         {"/wheel", "/wheel?set=2", "/account", "/account/deleted", "/account/export.json"})
        EXPECT_EQ(ben.get(path).find("Secret") + ben.last.body().find("Hers"), 2 * std::string::npos) << path;
    EXPECT_EQ(column(postAsAnna("get-goals", "&p4=1&p5=3"), "checked"), "[n]");
}

TEST_F(Pages, ShareTheLimitsOfSigningInWithTheProtocol)
{
    start({.trusted = {boost::asio::ip::make_network_v6("::ffff:127.0.0.1/128")}});
    Browser browser(port());
    browser.extra = "X-Forwarded-For: 192.0.2.1\r\n";
    const std::string unknown = browser.signIn("nobody@example.org", "x");
    EXPECT_EQ(browser.status(), 403U);
    std::string known = browser.signIn(m_login, "x");
    known.replace(known.find(m_login), m_login.size(), "nobody@example.org");
    EXPECT_EQ(known, unknown) << "nobody learns who has an account";
    for (int i = 0; i < 8; ++i)
        answerTo("p1=sign-in" + credentials(m_login, "guess"), "192.0.2.1");
    browser.signIn(m_login, m_password);
    EXPECT_EQ(browser.status(), 429U);
    EXPECT_TRUE(has(browser, "Too many failed attempts."));
    EXPECT_EQ(answerTo("p1=sign-in" + credentials("other@example.org", "x"), "192.0.2.1").outcome,
              requests::Outcome::TooManyAttempts);
    browser.extra = "X-Forwarded-For: 192.0.2.2\r\n"; // whoever guesses does not lock others out
    browser.signIn(m_login, m_password);
    EXPECT_TRUE(has(browser, "<h1>My wheel</h1>"));
    for (int i = 0; i < 10; ++i)
        browser.post("/account/close", {{"password", "guess"}});
    EXPECT_EQ(browser.status(), 403U);
    browser.post("/account/close", {{"password", m_password}});
    EXPECT_EQ(browser.status(), 429U) << "a stolen session is no way to guess a password";
}

TEST_F(Pages, SignUpByTheRulesOfTheProtocol)
{
    start();
    Browser browser(port());
    const auto signUp = [&](const std::string &email, const std::string &password, const std::string &again,
                            const std::string &name) {
        browser.cookies.clear();
        return browser.post("/sign-up",
                            {{"name", name}, {"email", email}, {"password", password}, {"again", again}});
    };
    signUp("ben@example.org", "a&p3=b&p4=ü+%", "a&p3=b&p4=ü+%", "Ben & Söhne");
    EXPECT_TRUE(has(browser, "<h1>My wheel</h1>"));
    browser.get("/account");
    EXPECT_TRUE(has(browser, "<bdi>Ben &amp; Söhne</bdi>"));
    EXPECT_EQ(post("p1=sign-in" + credentials("ben@example.org", "a&p3=b&p4=ü+%")), "OK");
    signUp("BEN@example.org", "x", "x", "Ben");
    EXPECT_EQ(browser.status(), 422U);
    EXPECT_TRUE(has(browser, "An account with this e-mail address already exists."));
    EXPECT_TRUE(has(browser, "value=\"BEN@example.org\"")) << "nothing has to be typed again";
    signUp("c@example.org", "x", "y", "C");
    EXPECT_TRUE(has(browser, "The two passwords differ."));
    signUp("c@example.org&p3=z", "x", "x", "C");
    EXPECT_EQ(browser.status(), 422U);
    signUp("c@example.org", "x", "x", "C&p4=D");
    EXPECT_EQ(browser.status(), 422U);
    signUp("c@example.org", "x", "x", "");
    EXPECT_TRUE(has(browser, "You must fill in all fields."));
    m_current->setSignUpRules({.mode = requests::SignUpRules::Mode::Invitation});
    browser.get("/sign-up");
    EXPECT_TRUE(has(browser, "Code of your invitation"));
    m_current->setSignUpRules({.mode = requests::SignUpRules::Mode::Closed});
    browser.get("/sign-up");
    EXPECT_TRUE(has(browser, "takes no new accounts"));
    signUp("c@example.org", "x", "x", "C");
    EXPECT_EQ(browser.status(), 422U);
}

TEST_F(Pages, ChangeThePasswordForEverything)
{
    start();
    Browser browser = signedIn();
    Browser other = signedIn();
    const auto change = [&](const std::string &present, const std::string &wanted, const std::string &again) {
        browser.post("/account/password", {{"password", present}, {"new", wanted}, {"again", again}});
        return browser.status();
    };
    EXPECT_EQ(change("wrong", "new", "new"), 403U);
    EXPECT_EQ(change(m_password, "new", "newer"), 422U);
    EXPECT_EQ(change(m_password, "", ""), 422U);
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
    EXPECT_EQ(change(m_password, "n&w=+é", "n&w=+é"), 200U);
    EXPECT_TRUE(has(browser, "Your password was changed"));
    EXPECT_EQ(postAsAnna("sign-in"), "The login or the password is wrong.") << "no longer remembered either";
    EXPECT_EQ(other.ask("GET", "/wheel").result_int(), 303U);
    m_password = "n&w=+é";
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
    signedIn();
}

TEST_F(Pages, GiveBackWhatWasDeletedAndHandOutWhatThereIs)
{
    postAsAnna("create-some-goals", "&p4=" + goal("One") + goal("Two"));
    postAsAnna("create-sets", "&p4=Summer");
    postAsAnna("delete-goal", "&p4=1");
    postAsAnna("delete-sets", "&p4=2");
    start();
    Browser browser = signedIn();
    browser.get("/account/deleted");
    EXPECT_TRUE(
        has(browser, "<bdi>Summer</bdi> <small>with 0 goals, deleted 1970-01-12, kept until 1970-02-11"));
    const std::string json = browser.get("/account/export.json");
    EXPECT_EQ(browser.last["Content-Disposition"], "attachment; filename=\"tarvex-wheel.json\"");
    EXPECT_NE(json.find(R"("name": "One", "priority": 5, "done": false, "deleted": ")"), std::string::npos)
        << json;
    EXPECT_NE(browser.get("/account/export.csv").find("\"My wheel\",\"Finance\",\"Two\",5,no,\r\n"),
              std::string::npos);
    browser.get("/account/deleted");
    browser.post("/account/deleted", {{"set", "2"}, {"goal", "1"}});
    EXPECT_TRUE(has(browser, "What you chose is back."));
    EXPECT_TRUE(has(browser, "There is nothing that could come back."));
    EXPECT_EQ(column(postAsAnna("get-sets"), "name"), "[My wheel][Summer]");
    EXPECT_EQ(column(postAsAnna("get-goals", "&p4=1&p5=3"), "name"), "[One][Two]");
}

TEST_F(Pages, CloseAnAccountThatCanBeKeptForThirtyDays)
{
    postAsAnna("create-some-goals", "&p4=" + goal("Kept"));
    start();
    EXPECT_EQ(postAsAnna("sign-in"), "OK");
    const auto close = [this] {
        Browser browser = signedIn();
        browser.post("/account/close", {{"password", m_password}});
        EXPECT_TRUE(has(browser, "Your account is closed."));
    };
    Browser elsewhere = signedIn();
    close();
    EXPECT_EQ(postAsAnna("sign-in"), "The login or the password is wrong.") << "as for one that is disabled";
    EXPECT_EQ(postAsAnna("get-sets"), "Error");
    EXPECT_EQ(elsewhere.ask("GET", "/wheel").result_int(), 303U);
    Browser owner(port());
    owner.signIn(m_login, "wrong");
    EXPECT_EQ(owner.status(), 403U);
    owner.signIn(m_login, m_password);
    EXPECT_TRUE(has(owner, "This account is closed"));
    EXPECT_EQ(postAsAnna("sign-in"), "The login or the password is wrong.")
        << "though it was right a moment ago";
    for (const char *path : {"/wheel", "/account", "/account/export.json", "/account/close"})
        EXPECT_EQ(owner.ask("GET", path)["Location"], "/account/closed") << path;
    owner.get("/account/closed");
    owner.post("/account/closed", {});
    EXPECT_TRUE(has(owner, "Your account is kept"));
    EXPECT_EQ(column(postAsAnna("get-goals", "&p4=1&p5=3"), "name"), "[Kept]");

    close();
    stop(); // from here on this thread keeps house
    const auto accountsAfter = [this](int days) {
        pass(std::chrono::hours(24 * days));
        m_now += std::chrono::hours(24 * days);
        m_current->keepHouse();
        std::int64_t count = -1;
        m_database.write([&](store::Connection &connection) { count = store::countAccounts(connection); });
        return count;
    };
    EXPECT_EQ(accountsAfter(29), 1);
    EXPECT_EQ(accountsAfter(2), 0);
    EXPECT_EQ(postAsAnna("sign-in"), "The login or the password is wrong.");
}

TEST_F(Pages, GoSecurelyBehindAProxyThatSaysSo)
{
    start({.trusted = {boost::asio::ip::make_network_v6("::ffff:127.0.0.1/128")}},
          {.twitter = "https://example.org/them", .facebook = ""});
    const auto cookieOf = [this](const std::string &extra) {
        Browser browser(port());
        browser.extra = extra;
        browser.ask("POST", "/sign-in", Browser::encoded({{"login", m_login}, {"password", m_password}}));
        return std::string(browser.last["Set-Cookie"]);
    };
    EXPECT_TRUE(cookieOf("X-Forwarded-Proto: https\r\n").starts_with("__Host-tarvex="));
    EXPECT_TRUE(
        cookieOf("X-Forwarded-Proto: https\r\n").ends_with("; Path=/; HttpOnly; SameSite=Strict; Secure"));
    EXPECT_TRUE(cookieOf("").ends_with("; Path=/; HttpOnly; SameSite=Strict"));
    Browser browser(port());
    EXPECT_EQ(browser.ask("GET", "/twitter")["Location"], "https://example.org/them");
    EXPECT_EQ(browser.ask("GET", "/facebook").result_int(), 404U);
    stop();
    start();
    EXPECT_TRUE(cookieOf("X-Forwarded-Proto: https\r\n").starts_with("tarvex=")) << "anybody can say so";
}

TEST_F(Pages, SayInWordsThatTheDatabaseIsAway)
{
    start();
    Browser browser = signedIn();
    const auto session = anotherSession(m_folder);
    session->execute("ALTER TABLE goal_set RENAME TO away");
    browser.get("/wheel?set=1&x=1");
    EXPECT_EQ(browser.status(), 503U);
    EXPECT_TRUE(has(browser, "cannot reach what it keeps"));
    browser.post("/wheel", {{"goal", "1"}});
    EXPECT_TRUE(browser.status() == 404U || browser.status() == 503U);
    session->execute("ALTER TABLE away RENAME TO goal_set");
    browser.get("/wheel?set=1&x=1");
    EXPECT_EQ(browser.status(), 200U) << "and nothing is lost";
}
