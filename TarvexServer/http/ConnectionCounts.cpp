#include "ConnectionCounts.h"

namespace tarvex::http {

ConnectionCounts::Welcome ConnectionCounts::enter(const std::string &peer)
{
    const auto ofPeer = m_servedByPeer.find(peer);
    const bool peerHasRoom =
        peer.empty() || ofPeer == m_servedByPeer.end() || ofPeer->second < m_limits.connectionsPerPeer;
    if (m_served < m_limits.connections && peerHasRoom) {
        ++m_served;
        ++m_servedByPeer[peer];
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
