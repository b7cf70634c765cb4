#include "VerifiedCredentials.h"

namespace tarvex::security {

std::string VerifiedCredentials::keyOf(std::int64_t accountId, std::int64_t version,
                                       std::string_view passwordDigest) const
{
    return m_hash({std::to_string(accountId), std::to_string(version), passwordDigest});
}

bool VerifiedCredentials::contains(std::int64_t accountId, std::int64_t version,
                                   std::string_view passwordDigest)
{
    const std::string key = keyOf(accountId, version, passwordDigest);
    const std::lock_guard lock(m_mutex);
    return m_entries.find(key) != nullptr;
}

void VerifiedCredentials::remember(std::int64_t accountId, std::int64_t version,
                                   std::string_view passwordDigest)
{
    const std::string key = keyOf(accountId, version, passwordDigest);
    const std::lock_guard lock(m_mutex);
    m_entries[key];
}

} // namespace tarvex::security
