#include "Purge.h"

#include "Deleted.h"

namespace tarvex::requests {

namespace {

constexpr std::int64_t keptSeconds = 30LL * 24 * 60 * 60;
constexpr int accountsPerStep = 20;
constexpr std::int64_t rowsPerStep = 200; // so that nobody's write waits for long

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
    m_database.write([this](store::Connection &connection) { removeSome(connection); },
                     [isUnderWay = m_isUnderWay](const std::exception_ptr &) { // what failed is begun again
                         *isUnderWay = false;
                         isUnderWay->notify_all();
                     });
}

void Purge::removeSome(store::Connection &connection)
{
    using std::chrono::duration_cast;
    using std::chrono::seconds;
    const auto ran = duration_cast<seconds>(m_clocks.steady() - m_lastStep);
    const std::int64_t before =
        store::movePurgeClock(connection, ran.count(), m_clocks.seconds()) - keptSeconds;
    m_lastStep += ran;
    std::int64_t removed = 0;
    for (int i = 0; i < accountsPerStep && removed < rowsPerStep; ++i) {
        m_account = store::nextWithDeleted(connection, m_account).value_or(0);
        if (m_account == 0)
            return; // through with all; the next step begins anew
        removed += store::purgeDeleted(connection, m_account, before, rowsPerStep);
    }
}

} // namespace tarvex::requests
