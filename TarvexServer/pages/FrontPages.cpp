#include "Accounts.h"
#include "Installation.h"
#include "Md5.h"
#include "Replies.h"
#include "Site.h"
#include "WheelParts.h"

#include <boost/json.hpp>

namespace tarvex::pages {

using requests::Outcome;

namespace {

constexpr long anHour = 60L * 60;
constexpr long aDay = 24 * anHour;
constexpr long aYear = 365 * aDay;

std::string samplePicture()
{
    constexpr std::array<std::int32_t, sliceCount> values = {6, 4, 3, 8, 5, 7, 2, 6};
    constexpr std::array<std::int32_t, sliceCount> percents = {60, 50, 33, 100, 40, 75, 20, 66};
    std::vector<store::Area> areas(sliceCount);
    for (std::size_t i = 0; i < sliceCount; ++i)
        areas[i].name = "Area " + std::to_string(i + 1);
    return wheelPicture("A wheel of life as an example", slicesOf(areas, values, percents));
}

std::string_view contentTypeOf(std::string_view name)
{
    return name.ends_with(".html")  ? "text/html; charset=utf-8"
           : name.ends_with(".css") ? "text/css; charset=utf-8"
                                    : "image/png";
}

/// What the protocol answered to a sign-up, in words.
std::string messageOf(const std::string &answer)
{
    boost::json::error_code error;
    const auto read = boost::json::parse(answer, error);
    const auto *const message =
        error || !read.is_object() ? nullptr : read.get_object().if_contains("message");
    return message != nullptr && message->is_string() ? boost::json::value_to<std::string>(*message)
                                                      : "The account could not be made.";
}

/// What signing up takes, as the protocol has it; nothing where a field would be taken for two.
std::string signUpBodyOf(std::string_view email, std::string_view password, std::string_view name)
{
    if (email.find('&') != std::string_view::npos || name.find("&p4=") != std::string_view::npos)
        return "";
    std::string body = "p1=create-new-user&p2=";
    body.reserve(email.size() + password.size() + name.size() + 64); // so that it leaves no copies behind
    body.append(email).append("&p3=").append(password).append("&p4=").append(name).append("&type=json");
    return body;
}

} // namespace

void Site::showFront(Visit &visit)
{
    static const std::string picture = samplePicture();
    Values values;
    values.set("picture", picture);
    show(visit, "front", std::move(values));
}

void Site::showStyle(Visit &visit)
{
    visit.end(
        commonReply("text/css; charset=utf-8", std::string(styleSheet()), aYear)); // its address has its mark
}

void Site::showIcon(Visit &visit)
{
    visit.end(commonReply("image/svg+xml", std::string(icon()), aDay));
}

void Site::showManual(Visit &visit)
{
    std::string_view name = visit.path;
    name.remove_prefix(std::min(name.size(), manualPath.size()));
    const auto file = fileOf(manualFiles, name);
    if (name.empty())
        visit.end(redirect("/manual/index.html"));
    else if (file)
        visit.end(commonReply(contentTypeOf(name), std::string(*file), anHour));
    else
        visit.end(told(/*status=*/404, "Not found", "The manual has no such page."));
}

void Site::showTwitter(Visit &visit)
{
    visit.end(m_links.twitter.empty() ? told(/*status=*/404, "Nothing there yet",
                                             "Whoever runs this service has no page on Twitter.")
                                      : redirect(m_links.twitter));
}

void Site::showFacebook(Visit &visit)
{
    visit.end(m_links.facebook.empty() ? told(/*status=*/404, "Nothing there yet",
                                              "Whoever runs this service has no page on Facebook.")
                                       : redirect(m_links.facebook));
}

void Site::showSignIn(Visit &visit)
{
    show(visit, "sign-in", Values());
}

void Site::showSignInAgain(Visit &visit, Outcome outcome) const
{
    Values values;
    values.set("problem", problemOf(outcome, "The login or the password is wrong."));
    values.set("login", std::string(visit.form.field("login").value_or("")));
    show(visit, "sign-in", std::move(values), statusOf(outcome));
}

void Site::signIn(Visit &visit)
{
    const auto login = visit.form.field("login");
    const auto password = visit.form.field("password");
    if (!login || !password) {
        visit.end(told(/*status=*/400, "Not understood", "The form is not whole. Nothing was done."));
        return;
    }
    const requests::PasswordQuestion question{.login = security::signInDigest(*login),
                                              .password = security::signInDigest(*password)};
    checkPassword(visit, question, [this, &visit](const requests::PasswordAnswer &answer) {
        if (answer.outcome == Outcome::Done)
            beginSession(visit, answer.accountId, answer.version, "/wheel");
        else
            showSignInAgain(visit, answer.outcome);
    });
}

void Site::showSignUp(Visit &visit)
{
    showSignUpAgain(visit, /*problem=*/"", /*status=*/200);
}

void Site::showSignUpAgain(Visit &visit, const std::string &problem, unsigned status) const
{
    using Mode = requests::SignUpRules::Mode;
    const Mode mode = m_service.signUpRules().mode;
    Values values;
    values.set("taken", mode != Mode::Closed);
    values.set("invited", mode == Mode::Invitation);
    if (!problem.empty())
        values.set("problem", problem);
    for (const char *field : {"name", "email", "code"})
        values.set(field, std::string(visit.form.field(field).value_or("")));
    show(visit, "sign-up", std::move(values), status);
}

void Site::signUp(Visit &visit)
{
    const auto email = visit.form.field("email");
    const auto password = visit.form.field("password");
    const auto again = visit.form.field("again");
    const auto name = visit.form.field("name");
    if (!email || !password || !again || !name) {
        visit.end(told(/*status=*/400, "Not understood", "The form is not whole. Nothing was done."));
        return;
    }
    if (*password != *again) {
        showSignUpAgain(visit, "The two passwords differ.", /*status=*/422);
        return;
    }
    const std::string_view code = visit.form.field("code").value_or("");
    visit.signUpBody =
        signUpBodyOf(*email, *password, std::string(*name).append(code.empty() ? "" : " ").append(code));
    if (visit.signUpBody.empty()) {
        showSignUpAgain(visit, "The e-mail address or the name is not valid.", /*status=*/422);
        return;
    }
    visit.then(Visit::Step::SignUp, {});
    visit.onceSignedUp = [this, &visit](const requests::Answer &answer) {
        visit.step = Visit::Step::Reply;
        if (answer.outcome != Outcome::Done) {
            const bool isInvalid = answer.outcome == Outcome::Invalid;
            showSignUpAgain(visit, messageOf(answer.body), isInvalid ? 422 : statusOf(answer.outcome));
            return;
        }
        visit.then(Visit::Step::Work, [this, &visit] {
            std::optional<store::Credentials> made;
            const std::string login =
                requests::loginKey(m_hash, security::signInDigest(visit.form.field("email").value_or("")));
            m_database.read(
                [&](store::Connection &connection) { made = store::findCredentials(connection, login); });
            if (made)
                beginSession(visit, made->accountId, made->version, "/wheel");
            else
                visit.end(redirect("/sign-in"));
        });
    };
}

void Site::signOut(Visit &visit)
{
    m_database.write(
        [&](store::Connection &connection) { store::endWebSession(connection, *visit.session); });
    visit.end(redirect("/sign-in?said=out"));
    visit.reply.fields += cookieField(/*value=*/"", visit.request.isEncrypted);
}

} // namespace tarvex::pages
