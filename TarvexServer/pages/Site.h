#pragma once

#include "Clocks.h"
#include "Database.h"
#include "KeyedHash.h"
#include "PageCache.h"
#include "Service.h"
#include "Templates.h"
#include "Visit.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarvex::pages {

/// What is elsewhere, as addresses; what is empty is told of here.
struct SiteLinks
{
    std::string twitter;
    std::string facebook;
};

/// Turns requests of browsers into pages; knows no sockets and no SQL. For many threads.
class Site
{
public:
    /// The service is that of the same database, and the hash that of the installation.
    Site(store::Database &database, requests::Service &service, const security::KeyedHash &hash,
         requests::Clocks clocks = {}, SiteLinks links = {});

    /// Takes a moment, and for a page that was asked for lately it is all.
    std::shared_ptr<Visit> begin(Request request);
    /// Does the step that the visit is at.
    void goOn(Visit &visit);
    /// The same with the answer to its request of the protocol.
    void signedUp(Visit &visit, const requests::Answer &answer);
    /// The reply to what will not be done.
    Reply refusal(requests::Outcome outcome) const;

private:
    static constexpr std::string_view manualPath = "/manual/";

    /// Who may see a page. What is for anybody is the same whoever asks.
    enum class For { Anybody, Everybody, SignedIn, Owners, OwnersOfClosed };
    struct Route
    {
        std::string_view path;
        For whom;
        void (Site::*get)(Visit &);
        void (Site::*post)(Visit &);
        bool isKept = false; ///< by the cache, for its session
    };
    static const Route *routeOf(std::string_view path);

    const Route *accepted(Visit &visit) const;
    void lookHastily(Visit &visit, const Route &route, store::Connection &connection);
    void identify(Visit &visit, store::Connection &connection) const;
    void serve(Visit &visit, const Route &route);
    bool mayEnter(Visit &visit, const Route &route) const;
    bool isFormOurs(const Visit &visit) const;
    void noteUse(const store::WebSession &session);
    std::optional<Badge> badgeOf(const Request &request) const;
    Badge badgeOf(std::int64_t accountId, std::string_view token) const;
    std::string cacheKey(const Visit &visit) const;
    void keepPage(const Visit &visit);
    void attempt(Visit &visit, const std::function<void()> &work) const;

    /// Reads, or writes, for whoever is signed in, in one transaction; not if the session has ended
    /// meanwhile, when the visit ends. Tells whether it did.
    bool readAs(Visit &visit, const store::Database::Work &work);
    bool writeAs(Visit &visit, const store::Database::Work &work);
    void endSignedOut(Visit &visit) const;
    /// Writes in the same way, with which all sessions of the account end, this one too.
    void endSessions(Visit &visit, std::string_view where, const store::Database::Work &work);
    void show(Visit &visit, std::string_view name, Values values, unsigned status = 200) const;
    /// In place of a page of a set that is not there. Whoever has no set at all is told that.
    void showNoSet(Visit &visit, bool hasOthers) const;
    Reply told(unsigned status, const std::string &title, const std::string &sentence) const;
    void beginSession(Visit &visit, std::int64_t accountId, std::int64_t version, std::string_view where);
    void checkPassword(Visit &visit, requests::PasswordQuestion question,
                       std::function<void(const requests::PasswordAnswer &)> then);

    // One function per page, see Route.
    void showFront(Visit &visit);
    void showStyle(Visit &visit);
    void showIcon(Visit &visit);
    void showManual(Visit &visit);
    void showTwitter(Visit &visit);
    void showFacebook(Visit &visit);
    void showSignIn(Visit &visit);
    void signIn(Visit &visit);
    void showSignUp(Visit &visit);
    void signUp(Visit &visit);
    void signOut(Visit &visit);
    void showWheel(Visit &visit);
    void tick(Visit &visit);
    void showProgress(Visit &visit);
    void showComparison(Visit &visit);
    void showAccount(Visit &visit);
    void changePassword(Visit &visit);
    void signOutEverywhere(Visit &visit);
    void showDeleted(Visit &visit);
    void bringBack(Visit &visit);
    void exportJson(Visit &visit);
    void exportTable(Visit &visit);
    void showClose(Visit &visit);
    void close(Visit &visit);
    void showClosed(Visit &visit);
    void keep(Visit &visit);

    void showSignInAgain(Visit &visit, requests::Outcome outcome) const;
    void showSignUpAgain(Visit &visit, const std::string &problem, unsigned status) const;
    void showAccountWith(Visit &visit, const std::string &problem, unsigned status);
    void showCloseWith(Visit &visit, const std::string &problem, unsigned status);

    store::Database &m_database;
    requests::Service &m_service;
    security::KeyedHash m_hash;
    requests::Clocks m_clocks;
    SiteLinks m_links;
    PageCache m_cache;
};

} // namespace tarvex::pages
