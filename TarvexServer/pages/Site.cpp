#include "Site.h"

#include "Accounts.h"
#include "Progress.h"
#include "RandomToken.h"
#include "Replies.h"
#include "StoreError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

namespace tarvex::pages {

using requests::Outcome;

namespace {

constexpr std::size_t tokenDigits = 64;
constexpr std::string_view formType = "application/x-www-form-urlencoded";

/// What a page says that another one led to, by the word in its address.
constexpr std::array<std::pair<std::string_view, const char *>, 7> notices = {
    {{"ticked", "The goal is done."},
     {"back", "What you chose is back."},
     {"password",
      "Your password was changed, and you are signed out everywhere. Please sign in with the new one."},
     {"everywhere", "You are signed out everywhere."},
     {"out", "You are signed out."},
     {"closed", "Your account is closed. If you change your mind, sign in here within 30 days."},
     {"kept", "Your account is kept, with all that is in it."}}};

/// The session ended while something was to be written for it.
class SessionOver : public std::exception
{
};

/// The name of a host without scheme and port.
std::string_view hostName(std::string_view address)
{
    if (const auto scheme = address.find("://"); scheme != std::string_view::npos)
        address.remove_prefix(scheme + 3);
    return address.substr(
        0, address.find(':', address.starts_with('[') ? std::min(address.find(']'), address.size()) : 0));
}

/// Whether a form was sent from a page of ours, as far as the browser says.
bool isFromHere(const Request &request)
{
    if (!request.fetchSite.empty())
        return request.fetchSite == "same-origin" || request.fetchSite == "none";
    return request.origin.empty() || hostName(request.origin) == hostName(request.host);
}

bool isPost(const Request &request)
{
    return request.method == "POST";
}

bool isToken(std::string_view text)
{
    return text.size() == tokenDigits && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace

Site::Site(store::Database &database, requests::Service &service, const security::KeyedHash &hash,
           requests::Clocks clocks, SiteLinks links)
    : m_database(database), m_service(service), m_hash(hash), m_clocks(std::move(clocks)),
      m_links(std::move(links))
{
}

const Site::Route *Site::routeOf(std::string_view path)
{
    static constexpr std::array routes = {
        Route{"/", For::Everybody, &Site::showFront, nullptr},
        Route{"/style.css", For::Anybody, &Site::showStyle, nullptr},
        Route{"/icon.svg", For::Anybody, &Site::showIcon, nullptr},
        Route{"/manual", For::Anybody, &Site::showManual, nullptr},
        Route{"/twitter", For::Anybody, &Site::showTwitter, nullptr},
        Route{"/facebook", For::Anybody, &Site::showFacebook, nullptr},
        Route{"/sign-in", For::Everybody, &Site::showSignIn, &Site::signIn},
        Route{"/sign-up", For::Everybody, &Site::showSignUp, &Site::signUp},
        Route{"/sign-out", For::SignedIn, nullptr, &Site::signOut},
        Route{"/wheel", For::Owners, &Site::showWheel, &Site::tick, /*isKept=*/true},
        Route{"/progress", For::Owners, &Site::showProgress, nullptr, /*isKept=*/true},
        Route{"/progress/compare", For::Owners, &Site::showComparison, nullptr},
        Route{"/account", For::Owners, &Site::showAccount, nullptr},
        Route{"/account/password", For::Owners, nullptr, &Site::changePassword},
        Route{"/account/sign-out", For::Owners, nullptr, &Site::signOutEverywhere},
        Route{"/account/deleted", For::Owners, &Site::showDeleted, &Site::bringBack},
        Route{"/account/export.json", For::Owners, &Site::exportJson, nullptr},
        Route{"/account/export.csv", For::Owners, &Site::exportTable, nullptr},
        Route{"/account/close", For::Owners, &Site::showClose, &Site::close},
        Route{"/account/closed", For::OwnersOfClosed, &Site::showClosed, &Site::keep},
    };
    if (path.starts_with(manualPath))
        path = "/manual";
    const auto found =
        std::find_if(routes.begin(), routes.end(), [&](const Route &route) { return route.path == path; });
    return found == routes.end() ? nullptr : &*found;
}

std::shared_ptr<Visit> Site::begin(Request request)
{
    auto visit = std::make_shared<Visit>(std::move(request));
    attempt(*visit, [&] {
        const Route *const route = accepted(*visit);
        if (route == nullptr)
            return;
        visit->then(Visit::Step::Work, [this, &visit = *visit, route] { serve(visit, *route); });
        visit->badge = badgeOf(visit->request);
        if (route->whom != For::Anybody && visit->badge)
            m_database.readInAMoment(
                [&](store::Connection &connection) { lookHastily(*visit, *route, connection); });
    });
    return visit;
}

/// Where the request leads, if it is one that can be served; else the visit has its reply.
const Site::Route *Site::accepted(Visit &visit) const
{
    const std::string_view target = visit.request.target;
    const std::size_t pathEnd = std::min(target.find('?'), target.size());
    visit.path = target.substr(0, pathEnd);
    const Route *const route = routeOf(visit.path);
    if (route == nullptr) {
        visit.end(told(/*status=*/404, "Not found", "There is no such page."));
        return nullptr;
    }
    const bool isRead = visit.request.method == "GET" || visit.request.method == "HEAD";
    const bool isServed = isPost(visit.request) ? route->post != nullptr : isRead && route->get != nullptr;
    if (!isServed) {
        visit.end(told(/*status=*/405, "Not like this", "This page cannot be asked for in this way."));
        visit.reply.fields.append(route->get == nullptr    ? "Allow: POST\r\n"
                                  : route->post == nullptr ? "Allow: GET, HEAD\r\n"
                                                           : "Allow: GET, HEAD, POST\r\n");
        return nullptr;
    }
    if (isPost(visit.request) && !isFromHere(visit.request)) {
        visit.end(
            told(/*status=*/403, "Not from here", "This form was sent from another site. Nothing was done."));
        return nullptr;
    }
    auto query = PageForm::read(target.substr(std::min(pathEnd + 1, target.size())));
    const bool isForm = !isPost(visit.request) || visit.request.contentType.starts_with(formType);
    auto form = isForm ? PageForm::read(visit.request.body) : std::nullopt;
    if (!query || !form) {
        visit.end(told(/*status=*/400, "Not understood",
                       "What your browser sent cannot be read. Nothing was done."));
        return nullptr;
    }
    visit.query = std::move(*query);
    visit.form = std::move(*form);
    return route;
}

/// Who it is and, if it is known, the page.
void Site::lookHastily(Visit &visit, const Route &route, store::Connection &connection)
{
    identify(visit, connection);
    if (!route.isKept || isPost(visit.request) || !visit.session)
        return;
    if (auto known = m_cache.find(cacheKey(visit), *visit.session)) {
        noteUse(*visit.session);
        visit.end(std::move(*known));
    }
}

void Site::identify(Visit &visit, store::Connection &connection) const
{
    visit.session =
        store::findWebSession(connection, visit.badge->accountId, visit.badge->tokenHash, m_clocks.seconds());
}

void Site::goOn(Visit &visit)
{
    const auto work = std::move(visit.next);
    attempt(visit, work);
}

void Site::signedUp(Visit &visit, const requests::Answer &answer)
{
    attempt(visit, [&] { visit.onceSignedUp(answer); });
}

void Site::serve(Visit &visit, const Route &route)
{
    visit.step = Visit::Step::Reply;
    if (route.whom != For::Anybody && visit.badge) // anew: it may have waited behind what ended the session
        m_database.read([&](store::Connection &connection) { identify(visit, connection); });
    if (visit.session)
        noteUse(*visit.session);
    if (mayEnter(visit, route))
        (this->*(isPost(visit.request) ? route.post : route.get))(visit);
}

/// Otherwise the visit has its reply.
bool Site::mayEnter(Visit &visit, const Route &route) const
{
    if (route.whom == For::Anybody || route.whom == For::Everybody)
        return true;
    if (!visit.session)
        endSignedOut(visit);
    else if (isPost(visit.request) && !isFormOurs(visit))
        visit.end(
            told(/*status=*/403, "Out of date", "This form is not one of your session. Nothing was done."));
    else if (route.whom == For::Owners && visit.session->closedAt)
        visit.end(redirect("/account/closed"));
    else if (route.whom == For::OwnersOfClosed && !visit.session->closedAt)
        visit.end(redirect("/account"));
    else
        return true;
    return false;
}

/// Compared under a hash, which takes as long whatever is wrong.
bool Site::isFormOurs(const Visit &visit) const
{
    const std::string_view given = visit.form.field("token").value_or("");
    return m_hash({"compared", given}) == m_hash({"compared", visit.badge->formToken});
}

void Site::noteUse(const store::WebSession &session)
{
    const std::int64_t now = m_clocks.seconds();
    if (now < session.usedAt + std::chrono::seconds(store::WebSessionTimes::betweenUses).count())
        return;
    m_database.write(
        [session, now](store::Connection &connection) { store::useWebSession(connection, session, now); },
        [](const std::exception_ptr &) {});
}

/// A cookie is the id of an account, a dot and a token.
std::optional<Badge> Site::badgeOf(const Request &request) const
{
    const std::string_view cookie =
        cookieValue(request.cookie, cookieName(request.isEncrypted)).value_or(std::string_view());
    const std::string_view digits = cookie.substr(0, cookie.find('.'));
    const std::string_view token = cookie.substr(std::min(digits.size() + 1, cookie.size()));
    std::int64_t accountId = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), accountId);
    if (error != std::errc() || end != digits.data() + digits.size() || !isToken(token))
        return {};
    return badgeOf(accountId, token);
}

Badge Site::badgeOf(std::int64_t accountId, std::string_view token) const
{
    return {.accountId = accountId,
            .tokenHash = m_hash({"web-session", token}),
            .formToken = m_hash({"web-form", token})};
}

std::string Site::cacheKey(const Visit &visit) const
{
    const std::string today = std::to_string(store::dayOf(m_clocks.seconds())); // which some pages show
    return m_hash({"page", std::to_string(visit.badge->accountId), visit.badge->tokenHash,
                   visit.request.target, today});
}

void Site::keepPage(const Visit &visit)
{
    m_cache.keep(cacheKey(visit), *visit.session, visit.reply);
}

/// Whatever fails becomes a page with words.
void Site::attempt(Visit &visit, const std::function<void()> &work) const
{
    try {
        work();
    } catch (const store::TransactionHindered &error) {
        visit.end(refusal(Outcome::Busy));
        visit.reply.cause = error.what();
    } catch (const store::NoRoom &error) {
        visit.end(told(/*status=*/507, "No room", "The service has no room for this. Nothing was done."));
        visit.reply.cause = error.what();
    } catch (const std::bad_alloc &) {
        visit.end(refusal(Outcome::Busy));
    } catch (const std::exception &error) {
        visit.end(refusal(Outcome::Failed));
        visit.reply.cause = error.what();
    }
}

Reply Site::refusal(Outcome outcome) const
{
    if (outcome == Outcome::TooLarge)
        return told(/*status=*/413, "Too large", "What your browser sent is too large. Nothing was done.");
    if (outcome == Outcome::Busy)
        return told(/*status=*/503, "Busy", "The service is busy. Please try again in a moment.");
    return told(/*status=*/503, "Not now",
                "The service cannot reach what it keeps. Nothing is lost; please try again later.");
}

bool Site::readAs(Visit &visit, const store::Database::Work &work)
{
    m_database.read([&](store::Connection &connection) {
        identify(visit, connection);
        if (visit.session)
            work(connection);
    });
    if (!visit.session)
        endSignedOut(visit);
    return visit.session.has_value();
}

bool Site::writeAs(Visit &visit, const store::Database::Work &work)
{
    try {
        m_database.write([&](store::Connection &connection) {
            store::countChange(connection, visit.badge->accountId);
            identify(visit, connection);
            if (!visit.session)
                throw SessionOver(); // so that nothing of it stays
            work(connection);
        });
        return true;
    } catch (const SessionOver &) {
        endSignedOut(visit);
        return false;
    }
}

void Site::endSignedOut(Visit &visit) const
{
    if (isPost(visit.request))
        visit.end(told(/*status=*/403, "Signed out",
                       "You are signed out, so nothing was done. Please sign in and do it again."));
    else
        visit.end(redirect("/sign-in"));
}

void Site::endSessions(Visit &visit, std::string_view where, const store::Database::Work &work)
{
    if (!writeAs(visit, [&](store::Connection &connection) {
            work(connection);
            store::endWebSessions(connection, visit.session->accountId);
        }))
        return;
    visit.end(redirect(where));
    visit.reply.fields += cookieField(/*value=*/"", visit.request.isEncrypted);
}

void Site::showNoSet(Visit &visit, bool hasOthers) const
{
    show(visit, hasOthers ? "gone" : "no-sets", Values(), hasOthers ? 404 : 200);
}

void Site::show(Visit &visit, std::string_view name, Values values, unsigned status) const
{
    const std::string_view said = visit.query.field("said").value_or("");
    const auto notice =
        std::find_if(notices.begin(), notices.end(), [&](const auto &known) { return known.first == said; });
    if (notice != notices.end() && !isPost(visit.request))
        values.set("notice", notice->second);
    if (visit.session) {
        values.set("token", visit.badge->formToken);
        values.set(visit.session->closedAt ? "closed" : "open", true);
        values.set("signedIn", true);
    } else {
        values.set("stranger", true);
    }
    values.set("at " + std::string(name), true);
    values.set("style", styleMark());
    visit.end(htmlReply(status, page(name, values)));
}

Reply Site::told(unsigned status, const std::string &title, const std::string &sentence) const
{
    Values values;
    values.set("title", title);
    values.set("sentence", sentence);
    values.set("style", styleMark());
    return htmlReply(status, page("told", values));
}

void Site::beginSession(Visit &visit, std::int64_t accountId, std::int64_t version, std::string_view where)
{
    const std::string token = security::randomToken();
    const Badge badge = badgeOf(accountId, token);
    const std::int64_t now = m_clocks.seconds();
    m_database.write([&](store::Connection &connection) {
        store::noteSeen(connection, accountId, store::dayOf(now));
        store::beginWebSession(connection, accountId, badge.tokenHash, version, now);
    });
    visit.end(redirect(where));
    visit.reply.fields += cookieField(std::to_string(accountId) + "." + token, visit.request.isEncrypted);
}

/// Goes on, in a step that may wait for the disk, once it is known whether a password is right.
void Site::checkPassword(Visit &visit, requests::PasswordQuestion question,
                         std::function<void(const requests::PasswordAnswer &)> then)
{
    question.peer = visit.request.peer;
    question.arrival = visit.request.arrival;
    visit.then(Visit::Step::Hash, [this, &visit, question, then = std::move(then)] {
        const requests::PasswordAnswer answer = m_service.check(question);
        visit.then(Visit::Step::Work, [answer, then, &visit] {
            visit.step = Visit::Step::Reply;
            then(answer);
        });
    });
}

} // namespace tarvex::pages
