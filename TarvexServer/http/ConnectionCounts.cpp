#include "ConnectionCounts.h"

namespace tarvex::http {

ConnectionCounts::Welcome ConnectionCounts::enter(const std::string &peer)
{
    const auto ofPeer = m_servedByPeer.find(peer);
    const bool peerHasRoom =
        peer.empty() || ofPeer == m_servedByPeer.end() || ofPeer->second < m_limits.connectionsPerPeer;
    if (m_served < m_limits.connections && peerHasRoom) {
        ++m_served;
        if (!peer.empty())
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
    const auto ofPeer = m_servedByPeer.find(peer);
    if (ofPeer != m_servedByPeer.end() && --ofPeer->second == 0)
        m_servedByPeer.erase(ofPeer);
}

} // namespace tarvex::http
