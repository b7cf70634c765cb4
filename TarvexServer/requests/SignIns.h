#pragma once

#include "Accounts.h"
#include "RecentMap.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace tarvex::requests {

/// Remembers with which login and password people signed in lately, and to which account, so that not every
/// request pays for a password hash. For many threads.
class SignIns
{
public:
    /// An account as it was when the password was found right; a sign-in holds for no other version of it.
    struct Account
    {
        std::int64_t id = 0;
        std::int64_t version = 0;

        bool holdsFor(const store::Credentials &credentials) const
        {
            return id == credentials.accountId && version == credentials.version;
        }
    };

    /// The sign-in is a hash of login and password.
    std::optional<Account> find(const std::string &signIn)
    {
        const std::lock_guard lock(m_mutex);
        const Account *const account = m_accounts.find(signIn);
        return account != nullptr ? std::optional(*account) : std::nullopt;
    }
    void remember(const std::string &signIn, const store::Credentials &credentials)
    {
        const std::lock_guard lock(m_mutex);
        m_accounts[signIn] = {.id = credentials.accountId, .version = credentials.version};
    }

private:
    std::mutex m_mutex;
    security::RecentMap<Account> m_accounts{/*capacity=*/10'000};
};

} // namespace tarvex::requests
