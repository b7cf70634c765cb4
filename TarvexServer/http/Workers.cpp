#include "Workers.h"

#include "Wipe.h"

#include <boost/asio/post.hpp>
#include <limits>

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

void Workers::submit(requests::Request request, const Done &done)
{
    if (request.body.size() <= requests::Service::momentaryBody) {
        goOn(m_service.begin(std::move(request)), done);
        return;
    }
    const std::shared_ptr<requests::Request> waiting(new requests::Request(std::move(request)),
                                                     [](requests::Request *dropped) {
                                                         security::wipe(dropped->body);
                                                         delete dropped;
                                                     });
    boost::asio::post(m_requestThreads, [this, waiting, done = Done(done)] {
        try {
            goOn(m_service.begin(std::move(*waiting)), done);
        } catch (const std::exception &) { // no memory; whoever waits for the answer has a time limit
        }
    });
}

void Workers::goOn(const std::shared_ptr<requests::Turn> &turn, const Done &done)
{
    switch (turn->step()) {
    case requests::Turn::Step::Answer:
        tell(built(*turn), done);
        break;
    case requests::Turn::Step::Hash:
        verify(turn, done);
        break;
    case requests::Turn::Step::Read:
    case requests::Turn::Step::Write:
        m_queues.enter(queueOf(*turn), [this, turn, done](AccountQueues::Place place) {
            const auto running =
                std::make_shared<Running>(Running{.place = std::move(place), .turn = turn, .done = done});
            if (turn->step() == requests::Turn::Step::Write)
                m_service.finishLater(
                    turn, [this, running](const requests::Answer &answer) { tell({answer}, running->done); });
            else
                boost::asio::post(m_requestThreads, [this, running] { read(running); });
        });
        break;
    }
}

void Workers::refuse(std::string_view body, requests::Outcome outcome, const Done &done)
{
    tell({m_service.refuse(body, outcome)}, done);
}

/// What is being noted has a place until it is told, so that stop() waits for it.
void Workers::tell(BuiltAnswer answer, const Done &done)
{
    if (!answer.answer.isBeingNoted) {
        done(std::move(answer));
        return;
    }
    m_queues.enter(--m_lastStranger, [&](AccountQueues::Place place) {
        m_service.onceNoted([place = std::move(place), answer, done] { done(answer); });
    });
}

void Workers::verify(const std::shared_ptr<requests::Turn> &turn, const Done &done)
{
    const auto run = [this, turn, done, since = std::chrono::steady_clock::now()] {
        m_service.measures().hashingWaits.add(std::chrono::steady_clock::now() - since);
        m_service.verify(*turn);
        try {
            goOn(turn, done);
        } catch (const std::exception &) { // no memory; whoever waits for the answer has a time limit
        }
    };
    m_hashingThreads.submit(
        std::string(turn->peer().empty() ? turn->login() : turn->peer()),
        {.run = run, .drop = [this, turn, done] { tell({m_service.giveUp(*turn)}, done); }});
}

void Workers::read(const std::shared_ptr<Running> &running)
{
    try {
        m_service.read(*running->turn);
        if (running->turn->step() != requests::Turn::Step::Answer)
            running->place.reset(); // which nobody is to keep while a password is hashed
        goOn(running->turn, running->done);
    } catch (const std::exception &) { // no memory, as above
    }
}

/// The account or, as long as that is not known, whoever says to have it. New ones wait for nobody.
std::int64_t Workers::queueOf(const requests::Turn &turn)
{
    if (turn.accountId() != 0)
        return turn.accountId();
    if (turn.login().empty())
        return --m_lastStranger;
    return std::numeric_limits<std::int64_t>::min() +
           static_cast<std::uint32_t>(std::hash<std::string_view>()(turn.login()));
}

/// The answer, or that there is no memory for it.
BuiltAnswer Workers::built(requests::Turn &turn)
{
    requests::Answer answer = m_service.finish(turn);
    auto share = m_answers.take(answer.body.size());
    return share ? BuiltAnswer{std::move(answer), std::move(*share)} : BuiltAnswer{m_service.giveUp(turn)};
}

void Workers::submit(pages::Site &site, const std::shared_ptr<pages::Visit> &visit, const Shown &shown)
{
    using Step = pages::Visit::Step;
    const auto work = [this, &site, visit, shown] { goOn(site, visit, shown, [&] { site.goOn(*visit); }); };
    switch (visit->step) {
    case Step::Reply:
        shown(built(site, *visit));
        break;
    case Step::Work:
        m_queues.enter(queueOf(*visit), [this, work](AccountQueues::Place place) {
            boost::asio::post(m_requestThreads,
                              [work = std::function<void()>(work), place = std::move(place)] { work(); });
        });
        break;
    case Step::Hash:
        m_hashingThreads.submit(
            visit->request.peer.empty() ? visit->path : visit->request.peer,
            {.run = work, .drop = [&site, shown] { shown({site.refusal(requests::Outcome::Busy)}); }});
        break;
    case Step::SignUp: {
        requests::Request request{
            .body = visit->signUpBody, .peer = visit->request.peer, .arrival = visit->request.arrival};
        goOn(m_service.begin(std::move(request)), [this, &site, visit, shown](const BuiltAnswer &signedUp) {
            goOn(site, visit, shown, [&] { site.signedUp(*visit, signedUp.answer); });
        });
        break;
    }
    }
}

/// Takes a step, and begins the next, on a thread that must go on whatever happens.
template<class Work>
void Workers::goOn(pages::Site &site, const std::shared_ptr<pages::Visit> &visit, const Shown &shown,
                   const Work &work)
{
    try {
        work();
        submit(site, visit, shown);
    } catch (const std::exception &) { // no memory; whoever waits for the page has a time limit
    }
}

/// The account of whoever is signed in; others wait for nobody.
std::int64_t Workers::queueOf(const pages::Visit &visit)
{
    return visit.session ? visit.session->accountId : --m_lastStranger;
}

BuiltPage Workers::built(const pages::Site &site, pages::Visit &visit)
{
    visit.forget();
    auto share = m_answers.take(visit.reply.body.size());
    return share ? BuiltPage{std::move(visit.reply), std::move(*share)}
                 : BuiltPage{site.refusal(requests::Outcome::Busy)};
}

} // namespace tarvex::http
