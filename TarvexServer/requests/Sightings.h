#pragma once

#include "Accounts.h"
#include "Clocks.h"
#include "Database.h"
#include "RecentMap.h"

#include <cstdint>
#include <mutex>
#include <string>

namespace tarvex::requests {

/// Keeps the day on which an account was last used, so that an operator sees which ones nobody needs. Written
/// once a day at most, whatever the requests, for all processes of an installation. For many threads.
class Sightings
{
public:
    Sightings(store::Database &database, const Clocks &clocks) : m_database(database), m_clocks(clocks) {}

    /// A password of the account was found right. Waits for nothing.
    void note(const store::Credentials &account);
    /// The same in a transaction that writes anyway.
    void note(const store::Credentials &account, store::Connection &connection) const;

private:
    std::int64_t today() const;

    store::Database &m_database;
    const Clocks &m_clocks;
    std::mutex m_mutex;
    security::RecentMap<std::int64_t> m_noted{
        /*capacity=*/10'000}; // days, by account, that may wait to be written
};

} // namespace tarvex::requests
