#include "Purge.h"

#include "AccountRemoval.h"
#include "ClosedAccounts.h"
#include "Deleted.h"
#include "FailureCounts.h"
#include "Incidents.h"
#include "Invitations.h"
#include "WebSessions.h"

namespace tarvex::requests {

namespace {

constexpr std::int64_t keptSeconds = Purge::keptDays * 24 * 60 * 60;
constexpr std::chrono::minutes betweenRounds{1}; // a disk that has nothing to do may sleep meanwhile
constexpr int accountsPerStep = 20;
constexpr std::int64_t rowsPerStep = 200; // so that nobody's write waits for long

/// Removes an account that was closed before a time, a step of it. Tells whether there may be more.
bool removeClosed(store::Connection &connection, std::int64_t before)
{
    const auto accountId = store::nextClosed(connection, before);
    if (!accountId)
        return false;
    store::freeLogins(connection, *accountId); // so that nobody has it kept any more
    if (store::removeSome(connection, *accountId, rowsPerStep) < rowsPerStep)
        store::removeAccount(connection, *accountId);
    return true;
}

} // namespace

Purge::Purge(store::Database &database, const Clocks &clocks)
    : m_database(database), m_clocks(clocks), m_lastStep(clocks.steady())
{
}

Purge::~Purge()
{
    m_isUnderWay->wait(true);
}

void Purge::step()
{
    if (m_isUnderWay->exchange(true))
        return;
    // Goes with the last that holds it, also when the step failed and will be begun again.
    const std::shared_ptr<void> end(nullptr, [isUnderWay = m_isUnderWay](std::nullptr_t) {
        *isUnderWay = false;
        isUnderWay->notify_all();
    });
    const bool isThrough = m_account == 0 && !m_isRemoving;
    if (isThrough && m_clocks.steady() < m_lastStep + betweenRounds)
        return;
    m_database.write([this](store::Connection &connection) { removeSome(connection); },
                     [end](const std::exception_ptr &) {});
}

void Purge::removeSome(store::Connection &connection)
{
    if (!connection.keepsHouse())
        return;
    const auto ran = std::chrono::duration_cast<std::chrono::seconds>(m_clocks.steady() - m_lastStep);
    const std::int64_t before =
        store::movePurgeClock(connection, ran.count(), m_clocks.seconds()) - keptSeconds;
    m_lastStep += ran;
    const std::int64_t now = m_clocks.seconds();
    store::forgetIncidents(connection, now - security::FailureCounts::window.count(), now);
    store::purgeInvitations(connection, before);
    store::purgeWebSessions(connection, now);
    m_isRemoving = removeClosed(connection, before);
    std::int64_t removed = 0;
    for (int i = 0; i < accountsPerStep && removed < rowsPerStep; ++i) {
        m_account = store::nextWithDeleted(connection, m_account).value_or(0);
        if (m_account == 0)
            return; // through with all; the next step begins anew
        removed += store::purgeDeleted(connection, m_account, before, rowsPerStep);
    }
}

} // namespace tarvex::requests
