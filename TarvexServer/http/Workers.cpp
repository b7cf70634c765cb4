#include "Workers.h"

#include <boost/asio/post.hpp>

namespace tarvex::http {

Workers::Workers(requests::Service &service, const Limits &limits)
    : m_service(service), m_maximumHashes(limits.hashingThreads + limits.waitingHashes),
      m_requestThreads(limits.requestThreads), m_hashingThreads(limits.hashingThreads)
{
}

Workers::~Workers()
{
    stop();
}

void Workers::stop()
{
    m_hashingThreads.stop();
    m_hashingThreads.join();
    m_requestThreads.stop();
    m_requestThreads.join();
}

void Workers::submit(requests::Request request, Done done)
{
    boost::asio::post(m_requestThreads,
                      [this, request = std::move(request), done = std::move(done)]() mutable {
                          auto turn = m_service.begin(std::move(request));
                          if (turn->needsHashing())
                              verify(std::move(turn), std::move(done));
                          else
                              done(m_service.finish(*turn));
                      });
}

void Workers::verify(std::unique_ptr<requests::Turn> turn, Done done)
{
    if (m_hashes.fetch_add(1) >= m_maximumHashes) {
        m_hashes.fetch_sub(1);
        done(m_service.giveUp(*turn));
        return;
    }
    boost::asio::post(m_hashingThreads, [this, turn = std::move(turn), done = std::move(done)]() mutable {
        m_service.verify(*turn);
        m_hashes.fetch_sub(1);
        boost::asio::post(m_requestThreads, [this, turn = std::move(turn), done = std::move(done)] {
            done(m_service.finish(*turn));
        });
    });
}

} // namespace tarvex::http
