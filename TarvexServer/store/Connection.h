#pragma once

namespace soci {
class session;
}

namespace tarvex::store {

/// A session inside an open transaction: what the functions of this folder work on. It is handed out by
/// Database and must not be kept beyond the transaction.
class Connection
{
public:
    explicit Connection(soci::session &session) : m_session(session) {}
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    soci::session &session() { return m_session; }

private:
    soci::session &m_session;
};

} // namespace tarvex::store
