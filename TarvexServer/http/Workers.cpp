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
    m_queues.end();
    m_requestThreads.stop();
    m_requestThreads.join();
}

void Workers::submit(requests::Request request, Done done)
{
    const std::shared_ptr<requests::Turn> turn = m_service.begin(std::move(request));
    if (turn->step() == requests::Turn::Step::Answer)
        done(m_service.finish(*turn));
    else if (turn->step() == requests::Turn::Step::Hash)
        verify(turn, std::move(done));
    else
        finish(turn, std::move(done));
}

void Workers::verify(const std::shared_ptr<requests::Turn> &turn, Done done)
{
    if (m_hashes.fetch_add(1) >= m_maximumHashes) {
        m_hashes.fetch_sub(1);
        done(m_service.giveUp(*turn));
        return;
    }
    boost::asio::post(m_hashingThreads, [this, turn, done = std::move(done)] {
        m_service.verify(*turn);
        m_hashes.fetch_sub(1);
        finish(turn, done);
    });
}

void Workers::finish(const std::shared_ptr<requests::Turn> &turn, Done done)
{
    // Who has no account yet waits for nobody.
    const std::int64_t accountId = turn->accountId() != 0 ? turn->accountId() : --m_lastStranger;
    const auto shared = std::make_shared<Done>(std::move(done));
    const auto leave = [this, accountId, shared](const requests::Answer &answer) {
        (*shared)(answer);
        *shared =
            nullptr; // what it holds must not outlive the server, for which stop() waits no longer after this
        m_queues.leave(accountId);
    };
    m_queues.enter(accountId, [this, turn, leave] {
        if (turn->step() == requests::Turn::Step::Write)
            m_service.finishLater(turn, leave);
        else
            boost::asio::post(m_requestThreads, [this, turn, leave] { leave(m_service.finish(*turn)); });
    });
}

} // namespace tarvex::http
