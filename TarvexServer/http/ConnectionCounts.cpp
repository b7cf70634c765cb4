#include "ConnectionCounts.h"

namespace tarvex::http {

bool ConnectionCounts::isFullFor(const std::string &peer) const
{
    const auto ofPeer = m_servedByPeer.find(peer);
    return !peer.empty() && ofPeer != m_servedByPeer.end() && ofPeer->second >= m_limits.connectionsPerPeer;
}

ConnectionCounts::Welcome ConnectionCounts::enter(const std::string &peer)
{
    if (!isFull() && !isFullFor(peer)) {
        ++m_servedByPeer[peer];
        ++m_served;
        return Welcome::Served;
    }
    if (m_refused >= m_limits.refusedConnections)
        return Welcome::Closed;
    ++m_refused;
    return Welcome::Refused;
}

void ConnectionCounts::leave(const std::string &peer, Welcome welcome)
{
    if (welcome == Welcome::Refused)
        --m_refused;
    if (welcome != Welcome::Served)
        return;
    --m_served;
    if (--m_servedByPeer[peer] == 0)
        m_servedByPeer.erase(peer);
}

} // namespace tarvex::http
