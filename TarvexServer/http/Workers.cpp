#include "Workers.h"

#include <boost/asio/post.hpp>

namespace tarvex::http {

/// A request that has its account to itself. What waits for the answer goes before the place does.
struct Workers::Running
{
    AccountQueues::Place place;
    std::shared_ptr<requests::Turn> turn;
    Done done;
};

Workers::Workers(requests::Service &service, const Limits &limits, AnswerMemory &answers)
    : m_service(service), m_answers(answers), m_requestThreads(limits.requestThreads),
      m_hashingThreads(limits.hashingThreads, limits.waitingHashes)
{
}

Workers::~Workers()
{
    stop();
}

void Workers::stop()
{
    m_hashingThreads.stop();
    m_queues.end();
    m_requestThreads.stop();
    m_requestThreads.join();
}

void Workers::submit(requests::Request request, Done done)
{
    const std::string peer = request.peer;
    const std::shared_ptr<requests::Turn> turn = m_service.begin(std::move(request));
    if (turn->step() == requests::Turn::Step::Answer)
        done(built(*turn));
    else if (turn->step() == requests::Turn::Step::Hash)
        verify(peer.empty() ? std::string(turn->login()) : peer, turn, done);
    else
        finish(turn, std::move(done));
}

void Workers::verify(const std::string &whose, const std::shared_ptr<requests::Turn> &turn, const Done &done)
{
    const auto run = [this, turn, done] {
        m_service.verify(*turn);
        try {
            finish(turn, done);
        } catch (const std::exception &) { // no memory; whoever waits for the answer has a time limit
        }
    };
    m_hashingThreads.submit(whose,
                            {.run = run, .drop = [this, turn, done] { done({m_service.giveUp(*turn)}); }});
}

void Workers::finish(const std::shared_ptr<requests::Turn> &turn, Done done)
{
    // Who has no account yet waits for nobody.
    const std::int64_t accountId = turn->accountId() != 0 ? turn->accountId() : --m_lastStranger;
    m_queues.enter(accountId, [this, turn, done = std::move(done)](AccountQueues::Place place) mutable {
        const auto running = std::make_shared<Running>(
            Running{.place = std::move(place), .turn = turn, .done = std::move(done)});
        if (running->turn->step() == requests::Turn::Step::Write)
            m_service.finishLater(running->turn,
                                  [running](const requests::Answer &answer) { running->done({answer}); });
        else
            boost::asio::post(m_requestThreads, [this, running] {
                try {
                    running->done(m_answers.isFull() ? BuiltAnswer{m_service.giveUp(*running->turn)}
                                                     : built(*running->turn));
                } catch (const std::exception &) { // no memory, as above
                }
            });
    });
}

/// The answer, or that there is no memory for it.
BuiltAnswer Workers::built(requests::Turn &turn)
{
    requests::Answer answer = m_service.finish(turn);
    auto share = m_answers.take(answer.body.size());
    return share ? BuiltAnswer{std::move(answer), std::move(*share)} : BuiltAnswer{m_service.giveUp(turn)};
}

} // namespace tarvex::http
