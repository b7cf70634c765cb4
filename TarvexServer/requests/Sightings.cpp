#include "Sightings.h"

#include "Progress.h"

namespace tarvex::requests {

void Sightings::note(const store::Credentials &account)
{
    const std::int64_t day = today();
    if (account.accountId == 0 || account.seenOn == day)
        return;
    {
        const std::lock_guard lock(m_mutex);
        std::int64_t &noted = m_noted[std::to_string(account.accountId)];
        if (noted == day)
            return;
        noted = day;
    }
    m_database.write([accountId = account.accountId,
                      day](store::Connection &connection) { store::noteSeen(connection, accountId, day); },
                     [](const std::exception_ptr &) {});
}

void Sightings::note(const store::Credentials &account, store::Connection &connection) const
{
    if (const std::int64_t day = today(); account.seenOn != day)
        store::noteSeen(connection, account.accountId, day);
}

std::int64_t Sightings::today() const
{
    return store::dayOf(m_clocks.seconds());
}

} // namespace tarvex::requests
