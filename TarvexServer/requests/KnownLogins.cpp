#include "KnownLogins.h"

namespace tarvex::requests {

std::optional<KnownLogins::Known> KnownLogins::find(const std::string &login)
{
    const std::lock_guard lock(m_mutex);
    const Known *const known = m_known.find(login);
    return known != nullptr ? std::optional(*known) : std::nullopt;
}

std::optional<store::Credentials> KnownLogins::credentialsOf(store::Connection &connection,
                                                             const std::string &login)
{
    if (const auto known = find(login)) {
        auto credentials = store::credentialsOf(connection, known->accountId);
        if (credentials && credentials->version == known->version)
            return credentials;
    }
    auto credentials = store::findCredentials(connection, login);
    if (credentials) {
        const std::lock_guard lock(m_mutex);
        m_known[login] = {.accountId = credentials->accountId, .version = credentials->version};
    }
    return credentials;
}

} // namespace tarvex::requests
