#pragma once

#include "PageTypes.h"
#include "RecentMap.h"
#include "WebSessions.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace tarvex::pages {

/// Pages that were asked for lately. One holds as long as nothing of its account is changed. For many
/// threads.
class PageCache
{
public:
    /// The page kept under the key if the account of the session is what it was.
    std::optional<Reply> find(const std::string &key, const store::WebSession &session)
    {
        const std::lock_guard lock(m_mutex);
        const Kept *kept = m_pages.find(key);
        const bool holds = kept != nullptr && kept->account == stateOf(session);
        return holds ? std::optional(kept->reply) : std::nullopt;
    }

    /// Keeps a page, unless it is large.
    void keep(const std::string &key, const store::WebSession &session, const Reply &reply)
    {
        if (reply.body.size() > largest)
            return;
        const std::lock_guard lock(m_mutex);
        m_pages[key] = {.account = stateOf(session), .reply = reply};
    }

private:
    struct State
    {
        std::int64_t accountId = 0;
        std::int64_t version = 0;
        std::int64_t changes = 0;
        bool operator==(const State &) const = default;
    };
    struct Kept
    {
        State account;
        Reply reply;
    };

    static State stateOf(const store::WebSession &session)
    {
        return {.accountId = session.accountId, .version = session.version, .changes = session.changes};
    }

    static constexpr std::size_t capacity = 256;
    static constexpr std::size_t largest = 64UL * 1024;

    std::mutex m_mutex;
    security::RecentMap<Kept> m_pages{capacity};
};

} // namespace tarvex::pages
