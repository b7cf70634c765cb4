#pragma once

#include "Accounts.h"
#include "RecentMap.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace tarvex::requests {

/// Remembers which accounts logins are, so that the database is asked for the account alone. For many
/// threads.
class KnownLogins
{
public:
    struct Known
    {
        std::int64_t accountId = 0;
        std::int64_t version = 0; ///< it is another account's if that has changed
    };

    // The login is as the store keeps it.
    std::optional<Known> find(const std::string &login);
    /// The same as store::findCredentials().
    std::optional<store::Credentials> credentialsOf(store::Connection &connection, const std::string &login);

private:
    std::mutex m_mutex;
    security::RecentMap<Known> m_known{/*capacity=*/10'000};
};

} // namespace tarvex::requests
