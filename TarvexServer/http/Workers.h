#pragma once

#include "Limits.h"
#include "Service.h"

#include <atomic>
#include <boost/asio/thread_pool.hpp>
#include <functional>

namespace tarvex::http {

/// Carries requests through the service on threads of their own: a few for the store, two for the hashing of
/// passwords, so that a rush of sign-ins holds up nobody who is signed in already.
class Workers
{
public:
    using Done = std::function<void(const requests::Answer &)>;

    Workers(requests::Service &service, const Limits &limits);
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    /// Calls done with the answer, on a thread of the workers. At once if too many passwords wait for
    /// hashing.
    void submit(requests::Request request, Done done);

    /// Ends the threads; requests that wait are dropped without an answer.
    void stop();

private:
    void verify(std::unique_ptr<requests::Turn> turn, Done done);

    requests::Service &m_service;
    std::size_t m_maximumHashes;
    std::atomic<std::size_t> m_hashes = 0;
    boost::asio::thread_pool m_requestThreads;
    boost::asio::thread_pool m_hashingThreads;
};

} // namespace tarvex::http
