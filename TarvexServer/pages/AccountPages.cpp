#include "AccountExport.h"
#include "Accounts.h"
#include "AccountTexts.h"
#include "Administration.h"
#include "ClosedAccounts.h"
#include "Decimal.h"
#include "Exporting.h"
#include "Md5.h"
#include "NewAccounts.h"
#include "Replies.h"
#include "Site.h"
#include "Times.h"
#include "Undeleting.h"

#include <algorithm>

namespace tarvex::pages {

using requests::Outcome;

namespace {

/// Deleted goals on one page, the last first, and bytes of their texts; what else there is stands in an
/// export.
constexpr std::size_t mostDeletedShown = 500;
constexpr std::size_t mostTextShown = 1024UL * 1024;
constexpr std::int64_t secondsPerDay = 24LL * 60 * 60;

constexpr const char *wrongPassword = "The password is wrong. Nothing was done.";

std::string lastDayOf(std::int64_t time)
{
    return wire::utcDay(time + requests::Purge::keptDays * secondsPerDay);
}

Values deletedValues(const requests::Undeletable &found)
{
    Values sets(Values::type::list);
    for (const auto &set : found.sets) {
        Values entry;
        entry.set("id", std::to_string(set.id));
        entry.set("name", set.name);
        entry.set("goals", std::to_string(set.goals) + (set.goals == 1 ? " goal" : " goals"));
        entry.set("day", wire::utcDay(set.deletedAt));
        entry.set("until", lastDayOf(set.deletedAt));
        sets.push_back(entry);
    }
    Values goals(Values::type::list);
    std::size_t shown = 0;
    for (std::size_t text = 0; shown < std::min(found.goals.size(), mostDeletedShown) && text < mostTextShown;
         ++shown) {
        const auto &goal = found.goals[shown];
        const std::string &set = found.setNames.at(goal.setId);
        const std::string &area = found.areaNames.at(goal.areaId);
        text += goal.name.size() + set.size() + area.size();
        Values entry;
        entry.set("id", std::to_string(goal.id));
        entry.set("name", goal.name);
        entry.set("set", set);
        entry.set("area", area);
        entry.set("day", wire::utcDay(goal.deletedAt));
        entry.set("until", lastDayOf(goal.deletedAt));
        entry.set("isSetDeleted", goal.isSetDeleted);
        goals.push_back(entry);
    }
    Values values;
    values.set("sets", sets);
    values.set("hasSets", !found.sets.empty());
    values.set("goals", goals);
    values.set("hasGoals", !found.goals.empty());
    values.set("hasAny", !found.sets.empty() || !found.goals.empty());
    if (found.goals.size() > shown)
        values.set("more", std::to_string(found.goals.size() - shown));
    return values;
}

/// The ids of a field; nothing if one is none.
std::optional<std::vector<std::int64_t>> idsIn(const PageForm &form, std::string_view name)
{
    std::vector<std::int64_t> ids;
    for (const std::string_view text : form.fields(name)) {
        const auto id = wire::wireId(text);
        if (!id)
            return {};
        ids.push_back(*id);
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

} // namespace

void Site::showAccount(Visit &visit)
{
    showAccountWith(visit, /*problem=*/"", /*status=*/200);
}

void Site::showAccountWith(Visit &visit, const std::string &problem, unsigned status)
{
    std::string name;
    std::int64_t sessions = 0;
    if (!readAs(visit, [&](store::Connection &connection) {
            name = store::accountName(connection, visit.session->accountId).value_or("");
            sessions = store::countWebSessions(connection, visit.session->accountId, m_clocks.seconds());
        }))
        return;
    Values values;
    values.set("name", name);
    values.set("sessions", std::to_string(sessions));
    values.set("severalSessions", sessions > 1);
    if (!problem.empty())
        values.set("problem", problem);
    show(visit, "account", std::move(values), status);
}

void Site::changePassword(Visit &visit)
{
    const auto current = visit.form.field("password");
    const auto wanted = visit.form.field("new");
    const auto again = visit.form.field("again");
    if (!current || !wanted || !again) {
        visit.end(told(/*status=*/400, "Not understood", "The form is not whole. Nothing was done."));
        return;
    }
    const std::string_view fault = *wanted != *again ? "The two new passwords differ. Nothing was done."
                                                     : requests::passwordFault(*wanted);
    if (!fault.empty()) {
        showAccountWith(visit, std::string(fault), /*status=*/422);
        return;
    }
    const requests::PasswordQuestion question{.accountId = visit.session->accountId,
                                              .password = security::signInDigest(*current)};
    checkPassword(visit, question, [this, &visit](const requests::PasswordAnswer &answer) {
        if (answer.outcome != Outcome::Done) {
            showAccountWith(visit, problemOf(answer.outcome, wrongPassword), statusOf(answer.outcome));
            return;
        }
        visit.then(Visit::Step::Hash, [this, &visit] {
            const std::string hash = requests::newPasswordHash(visit.form.field("new").value_or(""));
            visit.then(Visit::Step::Work, [this, &visit, hash] {
                endSessions(visit, "/sign-in?said=password", [&](store::Connection &connection) {
                    store::setPasswordHash(connection, visit.session->accountId, hash);
                });
            });
        });
    });
}

void Site::signOutEverywhere(Visit &visit)
{
    endSessions(visit, "/sign-in?said=everywhere", [](store::Connection &) {});
}

void Site::showDeleted(Visit &visit)
{
    show(visit, "deleted", deletedValues(requests::undeletable(m_database, visit.session->accountId)));
}

void Site::bringBack(Visit &visit)
{
    const auto sets = idsIn(visit.form, "set");
    const auto goals = idsIn(visit.form, "goal");
    const std::int64_t accountId = visit.session->accountId;
    std::string problem = "Please choose what is to come back.";
    if (sets && goals && (!sets->empty() || !goals->empty())) {
        try {
            if (writeAs(visit, [&](store::Connection &connection) {
                    requests::undelete(connection, accountId, *sets, *goals, m_clocks.seconds());
                }))
                visit.end(redirect("/account/deleted?said=back"));
            return;
        } catch (const requests::AccountProblem &fault) {
            problem = fault.what();
        }
    }
    Values values = deletedValues(requests::undeletable(m_database, accountId));
    values.set("problem", problem);
    show(visit, "deleted", std::move(values), /*status=*/422);
}

void Site::exportJson(Visit &visit)
{
    const auto exported = requests::exportAccount(m_database, visit.session->accountId, /*withDeleted=*/true);
    visit.end(fileReply("application/json", "tarvex-wheel.json", wire::writeExport(exported)));
}

void Site::exportTable(Visit &visit)
{
    const auto exported = requests::exportAccount(m_database, visit.session->accountId, /*withDeleted=*/true);
    const auto table = wire::writeTable(exported);
    visit.end(
        table
            ? fileReply("text/csv; charset=utf-8", "tarvex-goals.csv", *table)
            : told(
                  /*status=*/422, "Too large for a table",
                  "The names of its sets and areas are too long for a row each. Please take the JSON file."));
}

void Site::showClose(Visit &visit)
{
    showCloseWith(visit, /*problem=*/"", /*status=*/200);
}

void Site::showCloseWith(Visit &visit, const std::string &problem, unsigned status)
{
    Values values;
    values.set("until", lastDayOf(m_clocks.seconds()));
    if (!problem.empty())
        values.set("problem", problem);
    show(visit, "close", std::move(values), status);
}

void Site::close(Visit &visit)
{
    const auto password = visit.form.field("password");
    if (!password) {
        visit.end(told(/*status=*/400, "Not understood", "The form is not whole. Nothing was done."));
        return;
    }
    const requests::PasswordQuestion question{.accountId = visit.session->accountId,
                                              .password = security::signInDigest(*password)};
    checkPassword(visit, question, [this, &visit](const requests::PasswordAnswer &answer) {
        if (answer.outcome != Outcome::Done) {
            showCloseWith(visit, problemOf(answer.outcome, wrongPassword), statusOf(answer.outcome));
            return;
        }
        endSessions(visit, "/sign-in?said=closed", [&](store::Connection &connection) {
            store::closeAccount(connection, visit.session->accountId, m_clocks.seconds());
        });
    });
}

void Site::showClosed(Visit &visit)
{
    Values values;
    values.set("day", wire::utcDay(*visit.session->closedAt));
    values.set("until", lastDayOf(*visit.session->closedAt));
    show(visit, "closed", std::move(values));
}

void Site::keep(Visit &visit)
{
    const std::int64_t accountId = visit.session->accountId;
    std::int64_t version = 0;
    if (!writeAs(visit, [&](store::Connection &connection) {
            store::keepAccount(connection, accountId);
            version = store::ownerCredentials(connection, accountId)->version;
        }))
        return;
    beginSession(visit, accountId, version, "/account?said=kept");
}

} // namespace tarvex::pages
