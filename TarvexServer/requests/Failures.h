#pragma once

#include "Clocks.h"
#include "Database.h"
#include "FailureCounts.h"

#include <string>
#include <vector>

namespace tarvex::requests {

/// Limits how often signing in and up may fail, and how many accounts may be made. What is counted goes into
/// the database too, for other processes and for the time after a restart; here it counts even if that cannot
/// be written. For many threads.
class Failures
{
public:
    static constexpr std::int64_t limit = 10; ///< a minute
    /// The same for a login, from addresses where it has not failed in that minute: whoever guesses at a
    /// login does not lock its owner out.
    static constexpr std::int64_t limitElsewhere = 100;
    static_assert(limitElsewhere <= static_cast<std::int64_t>(security::FailureCounts::most));

    /// Whom a request counts against. What is empty has no limit.
    struct Keys
    {
        std::string address;
        std::string login;
        std::string loginThere;  ///< that login from that address
        std::string newAccounts; ///< made from that address
    };

    Failures(store::Database &database, const Clocks &clocks)
        : m_database(database), m_clocks(clocks), m_counts(clocks.steady)
    {
    }

    /// Whether a limit is used up, as far as this process knows.
    bool isExhausted(const Keys &keys);
    /// The same as the database knows it.
    bool isExhausted(const Keys &keys, store::Connection &connection) const;

    void countFailure(const Keys &keys);
    void countNewAccount(const Keys &keys);

private:
    void count(std::vector<std::string> keys);

    store::Database &m_database;
    const Clocks &m_clocks;
    security::FailureCounts m_counts;
};

} // namespace tarvex::requests
