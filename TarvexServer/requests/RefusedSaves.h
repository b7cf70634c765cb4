#pragma once

#include "Clocks.h"
#include "Database.h"
#include "RecentMap.h"
#include "Records.h"

#include <deque>
#include <memory>
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
/// able to hinder the account's deletes. Of savers who signed in once it is kept in the database, so that it
/// holds for all processes and after a restart, and in memory where that cannot be written; of all others,
/// who could be made up in any number and must not push those out, in memory only. For many threads.
class RefusedSaves
{
public:
    static constexpr std::chrono::minutes lifetime{10};

    RefusedSaves(store::Database &database, const Clocks &clocks, std::size_t capacity = 10'000);

    /// The saver's password was found right; what was refused before that counts as well.
    void signedIn(const std::string &saver);

    /// A save for that place came to nothing. Without a place it may have been any. Returns whether that is
    /// being written to the database.
    bool refused(const std::string &saver, std::optional<wire::GoalPlace> place);

    /// A save for that place went in, in this transaction, so its deletes are welcome again.
    void accepted(store::Connection &connection, const std::string &saver,
                  std::optional<wire::GoalPlace> place);

    /// Whether goals of these places must stay because the save before came to nothing. Asked once: the next
    /// delete of the same places is free again. Only of savers who are signed in.
    bool takeRefusal(store::Connection &connection, const std::string &saver,
                     const std::set<wire::GoalPlace> &places);

private:
    struct Entry
    {
        std::optional<wire::GoalPlace> place;
        std::chrono::steady_clock::time_point until;
    };

    using Entries = std::deque<Entry>;

    /// Outlives this object as long as something is being written.
    struct Memory
    {
        explicit Memory(std::size_t capacity) : known(capacity), strangers(capacity) {}

        void add(const std::string &saver, const Entry &entry);

        std::mutex mutex;
        security::RecentMap<Entries> known;
        security::RecentMap<Entries> strangers;
    };

    bool takeFromMemory(const std::string &saver, const std::set<wire::GoalPlace> &places);

    store::Database &m_database;
    const Clocks &m_clocks;
    std::shared_ptr<Memory> m_memory;
};

} // namespace tarvex::requests
