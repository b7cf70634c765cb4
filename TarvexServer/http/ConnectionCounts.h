#pragma once

#include "Limits.h"

#include <atomic>
#include <string>
#include <unordered_map>
#include <utility>

namespace tarvex::http {

/// Counts the open connections, all together and per peer. For one thread.
class ConnectionCounts
{
public:
    enum class Welcome {
        Served,
        Refused, ///< hears that the service is busy
        Closed,
    };

    explicit ConnectionCounts(const Limits &limits) : m_limits(limits) {}

    bool isFull() const { return m_served >= m_limits.connections; }
    bool isFullFor(const std::string &peer) const;

    /// The connections that are being served; this one thing any thread may ask.
    std::size_t served() const { return m_served; }

    /// Counts a connection in, unless the welcome is Closed. The peer's name is empty if it has no limit.
    Welcome enter(const std::string &peer);
    /// Counts a connection out, with the welcome it was given.
    void leave(const std::string &peer, Welcome welcome);

private:
    Limits m_limits;
    std::atomic<std::size_t> m_served = 0;
    std::size_t m_refused = 0;
    std::unordered_map<std::string, std::size_t> m_servedByPeer;
};

/// One connection's share of the counts, given back with it or before.
class ConnectionPlace
{
public:
    ConnectionPlace(ConnectionCounts &counts, std::string peer) : m_counts(&counts)
    {
        giveTo(std::move(peer));
    }
    ConnectionPlace(ConnectionPlace &&other) noexcept
        : m_counts(other.m_counts), m_peer(std::move(other.m_peer)),
          m_welcome(std::exchange(other.m_welcome, Welcome::Closed))
    {
    }
    ConnectionPlace &operator=(ConnectionPlace &&) = delete;
    ~ConnectionPlace() { giveBack(); }

    void giveBack() { m_counts->leave(m_peer, std::exchange(m_welcome, Welcome::Closed)); }
    /// Counts the connection as another peer's, which may change its welcome.
    void giveTo(std::string peer)
    {
        giveBack();
        m_peer = std::move(peer);
        m_welcome = m_counts->enter(m_peer);
    }

    const std::string &peer() const { return m_peer; }
    /// Closed, too, once it was given back.
    ConnectionCounts::Welcome welcome() const { return m_welcome; }

private:
    using Welcome = ConnectionCounts::Welcome;

    ConnectionCounts *m_counts;
    std::string m_peer;
    Welcome m_welcome = Welcome::Closed;
};

} // namespace tarvex::http
