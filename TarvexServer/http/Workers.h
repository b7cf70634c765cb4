#pragma once

#include "AccountQueues.h"
#include "AnswerMemory.h"
#include "FairThreads.h"
#include "Limits.h"
#include "Service.h"
#include "Site.h"

#include <atomic>
#include <boost/asio/thread_pool.hpp>
#include <functional>

namespace tarvex::http {

/// Carries requests through the service: most on the caller's thread, in a moment. Long bodies, long reads
/// and the hashing of passwords go to other threads, so that none of them holds up all connections.
class Workers
{
public:
    using Done = std::function<void(BuiltAnswer)>;
    using Shown = std::function<void(BuiltPage)>;

    Workers(requests::Service &service, const Limits &limits, AnswerMemory &answers);
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    /// Calls done with the answer, at once or on another thread. From one thread only. While too much waits
    /// to be sent, what would be large is busy instead.
    void submit(requests::Request request, const Done &done);

    /// The same with a request that will not be served, of which the body's beginning is enough.
    void refuse(std::string_view body, requests::Outcome outcome, const Done &done);

    /// Calls `shown` with the page that the visit leads to, in the same way.
    void submit(pages::Site &site, const std::shared_ptr<pages::Visit> &visit, const Shown &shown);

    /// Ends the threads; requests that wait are dropped without an answer.
    void stop();

private:
    struct Running;

    void verify(const std::shared_ptr<requests::Turn> &turn, const Done &done);
    void goOn(const std::shared_ptr<requests::Turn> &turn, const Done &done);
    void read(const std::shared_ptr<Running> &running);
    std::int64_t queueOf(const requests::Turn &turn);
    std::int64_t queueOf(const pages::Visit &visit);
    template<class Work>
    void goOn(pages::Site &site, const std::shared_ptr<pages::Visit> &visit, const Shown &shown,
              const Work &work);
    BuiltPage built(const pages::Site &site, pages::Visit &visit);
    void tell(BuiltAnswer answer, const Done &done);
    BuiltAnswer built(requests::Turn &turn);

    requests::Service &m_service;
    AnswerMemory &m_answers;
    AccountQueues m_queues;
    std::atomic<std::int64_t> m_lastStranger = 0;
    boost::asio::thread_pool m_requestThreads;
    FairThreads m_hashingThreads;
};

} // namespace tarvex::http
