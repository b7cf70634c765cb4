#pragma once

#include "RecentMap.h"
#include "Records.h"

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace tarvex::requests {

/// Remembers whose create-some-goals came to nothing, so that the delete-some-goals behind it can be refused.
///
/// A client saves an area by creating all its goals anew and deleting the old ones next, whatever the service
/// answered in between; after a refusal the old ones are all there is. A saver is one pair of sign-in
/// digests, hashed: saves are refused before anyone is signed in too, and nobody without the password must be
/// able to hinder the account's deletes. Savers who signed in once are kept apart from all others, who could
/// be made up in any number and must not push those out. Held in memory for a few minutes. For many threads.
class RefusedSaves
{
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    static constexpr std::chrono::minutes lifetime{10};

    explicit RefusedSaves(Clock clock, std::size_t capacity = 10'000)
        : m_clock(std::move(clock)), m_known(capacity), m_strangers(capacity)
    {
    }

    /// The saver's password was found right; what was refused before that counts as well.
    void signedIn(const std::string &saver);

    /// A save for that place came to nothing. Without a place it may have been any.
    void refused(const std::string &saver, std::optional<wire::GoalPlace> place);

    /// A later save for that place went in, so its deletes are welcome again.
    void accepted(const std::string &saver, wire::GoalPlace place);

    /// Whether goals of these places must stay because the save before came to nothing. Asked once: the next
    /// delete of the same places is free again. Only of savers who are signed in.
    bool takeRefusal(const std::string &saver, const std::set<wire::GoalPlace> &places);

private:
    struct Entry
    {
        std::optional<wire::GoalPlace> place;
        std::chrono::steady_clock::time_point until;
    };

    using Entries = std::deque<Entry>;

    Clock m_clock;
    std::mutex m_mutex;
    security::RecentMap<Entries> m_known;
    security::RecentMap<Entries> m_strangers;
};

} // namespace tarvex::requests
