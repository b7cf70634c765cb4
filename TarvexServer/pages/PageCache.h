#pragma once

#include "PageTypes.h"
#include "RecentMap.h"
#include "WebSessions.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace tarvex::pages {

/// Pages that were asked for lately. One holds as long as nothing at all was changed in the database, and
/// after that if its session goes on and nothing of its account was. For many threads.
class PageCache
{
public:
    /// The page kept under the key if the database is what it was when the page was last found to hold. The
    /// version is that of store::Connection::version(), always of the same connection.
    std::optional<Reply> find(const std::string &key, std::int64_t version, std::int64_t now)
    {
        const std::lock_guard lock(m_mutex);
        const Kept *kept = m_pages.find(key);
        const bool holds = kept != nullptr && kept->version == version && now < kept->goodUntil;
        return holds ? std::optional(kept->reply) : std::nullopt;
    }

    /// The same if the account of the session is what it was.
    std::optional<Reply> find(const std::string &key, std::int64_t version, const store::WebSession &session)
    {
        const std::lock_guard lock(m_mutex);
        Kept *kept = m_pages.find(key);
        if (kept == nullptr || kept->account != stateOf(session))
            return {};
        kept->version = version;
        kept->goodUntil = goodUntil(session);
        return kept->reply;
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
        std::optional<std::int64_t> version = {};
        std::int64_t goodUntil = 0;
        Reply reply;
    };

    static State stateOf(const store::WebSession &session)
    {
        return {.accountId = session.accountId, .version = session.version, .changes = session.changes};
    }
    /// Until the session has to be looked at, be it that its use is to be kept.
    static std::int64_t goodUntil(const store::WebSession &session)
    {
        const std::chrono::seconds step = store::WebSessionTimes::betweenUses;
        return std::min(session.goodUntil, session.usedAt + step.count());
    }

    static constexpr std::size_t capacity = 256;
    static constexpr std::size_t largest = 64UL * 1024;

    std::mutex m_mutex;
    security::RecentMap<Kept> m_pages{capacity};
};

} // namespace tarvex::pages
