#pragma once

#include "RequestKind.h"

#include <chrono>
#include <cstddef>

namespace tarvex::http {

/// What the service grants a connection; sizes in bytes.
struct Limits
{
    std::size_t head = 8UL * 1024;
    std::size_t body = requests::largestBody;
    std::size_t form = 512UL * 1024; ///< of a page
    /// A longer body than this is not even read to its end, and costs the connection.
    std::size_t discardedBody = 64UL * 1024 * 1024;
    /// The bodies of all connections together.
    std::size_t bodiesInMemory = 64UL * 1024 * 1024;

    /// The answers that wait to be sent, of all connections together.
    std::size_t answersInMemory = 128UL * 1024 * 1024;

    std::chrono::milliseconds headTime{10'000};
    std::chrono::milliseconds bodyTime{20'000};
    std::chrono::milliseconds writeTime{20'000};
    std::chrono::milliseconds idleTime{30'000};
    std::chrono::milliseconds handlerTime{25'000};
    std::chrono::milliseconds drainTime{3'000};

    std::size_t connections = 1024;
    /// Per address; connections from the machine itself are not held to it.
    std::size_t connectionsPerPeer = 64;
    /// Connections beyond the limits that still hear that the service is busy; further ones are closed at
    /// once.
    std::size_t refusedConnections = 64;

    std::size_t requestThreads = 4;
    std::size_t hashingThreads = 2;
    std::size_t waitingHashes = 64;
};

} // namespace tarvex::http
