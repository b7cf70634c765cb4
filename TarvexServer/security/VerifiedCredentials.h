#pragma once

#include "KeyedHash.h"
#include "RecentMap.h"

#include <cstdint>
#include <mutex>
#include <string_view>

namespace tarvex::security {

/// Remembers which passwords were verified lately, so that not every request pays for a password hash. An
/// entry holds for one version of the account only. For many threads.
class VerifiedCredentials
{
public:
    explicit VerifiedCredentials(std::size_t capacity = 10'000) : m_entries(capacity) {}

    bool contains(std::int64_t accountId, std::int64_t version, std::string_view passwordDigest);
    void remember(std::int64_t accountId, std::int64_t version, std::string_view passwordDigest);

private:
    struct Nothing
    {
    };

    std::string keyOf(std::int64_t accountId, std::int64_t version, std::string_view passwordDigest) const;

    KeyedHash m_hash;
    std::mutex m_mutex;
    RecentMap<Nothing> m_entries;
};

} // namespace tarvex::security
