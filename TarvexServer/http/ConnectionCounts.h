#pragma once

#include "Limits.h"

#include <string>
#include <unordered_map>

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

    /// Counts a connection in, unless the welcome is Closed. The peer's name is empty if it has no limit.
    Welcome enter(const std::string &peer);
    /// Counts a connection out, with the welcome it was given.
    void leave(const std::string &peer, Welcome welcome);

private:
    Limits m_limits;
    std::size_t m_served = 0;
    std::size_t m_refused = 0;
    std::unordered_map<std::string, std::size_t> m_servedByPeer;
};

} // namespace tarvex::http
