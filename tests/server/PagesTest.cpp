// What browsers get, over real connections: what pages show, and what becomes of what should not be sent to
// them.

#include "PageForm.h"
#include "PagesFixture.h"
#include "SampleRows.h"
#include "WheelPicture.h"

#include <boost/beast/http/write.hpp>
#include <sstream>

using namespace tarvex;
using namespace std::chrono_literals;

namespace {

/// What people in their browsers and the owner's client do one after the other, as a file of samples has it.
class PageConversation : public Pages, public testing::WithParamInterface<std::string>
{
protected:
    void take(const SampleRow &row)
    {
        const auto &[who, what] = std::tie(row[0], row[1]);
        if (who == "client") {
            const auto [kind, fields] = halves(what);
            EXPECT_EQ(shown(answerTo(asAnna(kind, fields), m_address).body, /*elements=*/row[2]), row[3]);
        } else if (who == "hours") {
            pass(std::chrono::hours(std::stoi(what)));
        } else if (who == "login" || who == "password") {
            (who == "login" ? m_login : m_password) = what;
        } else if (who == "address") {
            m_address = what;
        } else if (who == "header") {
            m_header = what;
        } else if (who == "operator") {
            if (what == "enable" || what == "disable")
                requests::setDisabled(m_database, anna(), /*isDisabled=*/what == "disable");
            else
                requests::setPassword(m_database, anna(), /*password=*/what);
        } else if (who == "sign-up") {
            using Mode = requests::SignUpRules::Mode;
            m_current->setSignUpRules({.mode = what == "closed" ? Mode::Closed : Mode::Invitation});
        } else {
            Browser &browser = browserOf(who);
            use(browser, what);
            EXPECT_EQ(std::to_string(browser.status()), row[2]);
            EXPECT_TRUE(has(browser, row[3])) << browser.last.body();
            EXPECT_FALSE(has(browser, "<script"));
        }
    }

private:
    static std::pair<std::string, std::string> halves(const std::string &text)
    {
        const auto end = std::min(text.find(' '), text.size());
        return {text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
    }
    /// That of an owner is signed in.
    Browser &browserOf(const std::string &who)
    {
        if (!m_browsers.contains(who))
            m_browsers.emplace(who, who.starts_with("owner") ? signedIn() : Browser(port()));
        return m_browsers.at(who);
    }
    /// Goes to a page, or asks for it and no further; posts a form, or sends it as it stands.
    void use(Browser &browser, std::string what)
    {
        boost::replace_all(what, "{token}", "token=" + browser.token);
        boost::replace_all(what, "{login}", Browser::escaped(m_login));
        boost::replace_all(what, "{password}", Browser::escaped(m_password));
        const auto [deed, rest] = halves(what);
        const auto [target, form] = halves(rest);
        browser.extra = m_header + (m_address.empty() ? "" : "X-Forwarded-For: " + m_address + "\r\n");
        if (deed == "get")
            browser.get(target);
        else if (deed == "take-cookies-of")
            browser.cookies = browserOf(target).cookies;
        else if (deed == "ask")
            browser.ask("GET", target);
        else if (deed == "post")
            browser.post(target, form);
        else if (deed == "send")
            browser.ask("POST", target, form);
        else if (deed == "send-as-text")
            browser.ask("POST", target, form, "text/plain");
        else
            EXPECT_EQ(deed, "") << "is the page that is shown already";
    }

    std::map<std::string, Browser> m_browsers;
    std::string m_header;  // that goes with what browsers send
    std::string m_address; // that a proxy tells, if there is one
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Pages, PageConversation, testing::ValuesIn(samplesIn("pages")),
                         [](const auto &sample) { return boost::replace_all_copy(sample.param, "-", "_"); });

TEST_P(PageConversation, GoesAsWritten)
{
    start({.trusted = {boost::asio::ip::make_network_v6("::ffff:127.0.0.1/128")}});
    for (const SampleRow &row : sampleRows("pages/" + GetParam() + ".txt")) {
        SCOPED_TRACE(row[0] + ": " + row[1].substr(0, 200));
        take(row);
    }
}

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
    for (const char *path : {"/", "/sign-in", "/sign-up", "/wheel", "/account", "/account/deleted",
                             "/account/close", "/nowhere", "/twitter"}) {
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
    EXPECT_EQ(stranger.last["Allow"], "GET, HEAD, POST");
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

TEST_F(Pages, EndSessionsInTime)
{
    start();
    Browser used = signedIn();
    Browser idle = signedIn();
    for (int hour = 11; hour < 14 * 24; hour += 11) {
        pass(11h);
        EXPECT_EQ(used.ask("GET", "/wheel").result_int(), 200U) << hour;
        awaitWrites();
    }
    EXPECT_EQ(idle.ask("GET", "/wheel").result_int(), 303U);
    EXPECT_EQ(idle.last["Location"], "/sign-in");
    idle.post("/wheel", "goal=1");
    EXPECT_EQ(idle.status(), 403U);
    EXPECT_TRUE(has(idle, "nothing was done"));
    pass(11h);
    EXPECT_EQ(used.ask("GET", "/wheel").result_int(), 303U) << "none lasts longer than 14 days";
}

TEST_F(Pages, EndTheOldestSessionsOfMany)
{
    start();
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
         {mixed, hers + "0", hers.substr(0, hers.size() - 1),
          std::string("0").append(hers).append("; tarvex=").append(hers), std::string("1.x"),
          std::string("."), "-" + hers, hers.substr(0, hers.find('.')) + "." + std::string(64, '0')}) {
        Browser forger(port());
        forger.cookies["tarvex"] = cookie;
        EXPECT_EQ(forger.ask("GET", "/wheel").result_int(), 303U) << cookie;
    }
    ben.token = anna.token;
    ben.post("/wheel", "goal=1");
    EXPECT_EQ(ben.status(), 403U) << "another one's token";
    ben.get("/account");
    ben.post("/wheel", "goal=1");
    EXPECT_EQ(ben.status(), 404U);
    ben.post("/account/deleted", "set=2");
    EXPECT_EQ(ben.status(), 422U);
    for (const char *path :
         {"/wheel", "/wheel?set=2", "/account", "/account/deleted", "/account/export.json"}) {
        const std::string page = ben.get(path);
        EXPECT_EQ(page.find("Secret"), std::string::npos) << path;
        EXPECT_EQ(page.find("Hers"), std::string::npos) << path;
    }
    EXPECT_EQ(column(postAsAnna("get-goals", "&p4=1&p5=3"), "checked"), "[n]");
}

TEST_F(Pages, ShowGoalsOfASetWithALongNameInParts)
{
    std::string goals;
    std::string ids;
    for (int id = 1; id <= 1'200; ++id) {
        goals += goal("x");
        ids += std::to_string(id) + ";";
    }
    postAsAnna("create-some-goals", "&p4=" + goals);
    postAsAnna("delete-some-goals", "&p4=" + ids);
    postAsAnna("set-sets-name", "&p4=" + std::string(60'000, 'x') + "&p5=1");
    start();
    Browser anna = signedIn();
    EXPECT_LT(anna.get("/account/deleted").size(), 2'000'000U);
    EXPECT_TRUE(has(anna, "1182 more were deleted before these"));
    anna.get("/account/export.csv");
    EXPECT_EQ(anna.status(), 422U);
}

TEST_F(Pages, TellNobodyWhoHasAnAccount)
{
    start();
    Browser browser(port());
    const std::string unknown = browser.signIn("nobody@example.org", "x");
    EXPECT_EQ(boost::replace_all_copy(browser.signIn(m_login, "x"), m_login, "nobody@example.org"), unknown);
}

TEST_F(Pages, CloseAnAccountThatIsGoneAfterThirtyDays)
{
    start();
    Browser browser = signedIn();
    browser.post("/account/close", "password=" + Browser::escaped(m_password));
    stop(); // from here on this thread keeps house
    const auto accountsAfter = [this](int days) {
        pass(std::chrono::hours(24 * days));
        m_now += std::chrono::hours(24 * days);
        m_current->keepHouse();
        return numberOf("SELECT COUNT(*) FROM account");
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
        browser.ask("POST", "/sign-in", Browser::credentials(m_login, m_password));
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

TEST_F(Pages, TellASetThatIsGoneFromHavingNone)
{
    start();
    Browser browser = signedIn();
    for (const unsigned status : {404U, 200U}) {
        for (const char *path : {"/wheel?set=9", "/progress?set=9", "/progress/compare?first=9"}) {
            browser.get(path);
            EXPECT_EQ(browser.status(), status) << path;
        }
        postAsAnna("delete-sets", "&p4=1");
    }
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
    browser.post("/wheel", "goal=1");
    EXPECT_TRUE(browser.status() == 404U || browser.status() == 503U);
    session->execute("ALTER TABLE away RENAME TO goal_set");
    browser.get("/wheel?set=1&x=1");
    EXPECT_EQ(browser.status(), 200U) << "and nothing is lost";
}
