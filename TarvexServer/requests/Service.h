#pragma once

#include "Accounts.h"
#include "Answer.h"
#include "Database.h"
#include "FailureLimits.h"
#include "Form.h"
#include "KeyedHash.h"
#include "RefusedSaves.h"
#include "RequestKind.h"
#include "SignUpForm.h"
#include "VerifiedCredentials.h"

#include <chrono>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarvex::requests {

/// One whole request as it came in.
struct Request
{
    std::string body;
    std::string peer; ///< whom failed sign-ins are counted against beside the login; empty for nobody
    std::chrono::steady_clock::time_point arrival;
};

/// A request on its way through the three steps of Service.
class Turn
{
public:
    explicit Turn(Request request);
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// Whether the next step is Service::verify() rather than Service::finish().
    bool needsHashing() const { return m_needsHashing; }

private:
    friend class Service;

    Request m_request;
    const RequestKind &m_kind;
    wire::Form m_form; // its views point into m_request
    std::optional<wire::SignUpForm> m_signUp;
    store::Credentials m_credentials;
    std::string m_newPasswordHash;
    std::optional<Answer> m_answer;
    bool m_needsHashing = false;
};

struct Clocks
{
    std::function<std::chrono::steady_clock::time_point()> steady = std::chrono::steady_clock::now;
    std::function<std::int64_t()> seconds = [] { return std::time(nullptr); }; ///< since 1970
};

/// Turns request bodies into answers; knows no sockets and no SQL. For many threads.
///
/// A request takes three steps, so that the caller decides where each one runs: begin() and finish() ask the
/// store, verify() burns 20 ms and 19 MiB on a password and is left out when needsHashing() is false.
class Service
{
public:
    /// How long a request may be on its way; one that took longer is refused instead of begun.
    static constexpr std::chrono::seconds patience{15};

    explicit Service(store::Database &database, Clocks clocks = {});

    std::unique_ptr<Turn> begin(Request request);
    void verify(Turn &turn);
    Answer finish(Turn &turn);

    /// Ends a turn that was begun and, for want of room, will be neither verified nor finished.
    Answer giveUp(const Turn &turn);

    /// The answer to a request that will not be served, of which the body's beginning is enough. It counts as
    /// a refused save where it was one.
    Answer refuse(std::string_view body, Outcome outcome);

private:
    void beginSignUp(Turn &turn);
    void beginSignedIn(Turn &turn);
    std::vector<std::string> limitedKeys(const Turn &turn) const;
    bool isExhausted(const Turn &turn);
    void countFailure(const Turn &turn);
    bool isVerified(const Turn &turn);
    void verifyPassword(Turn &turn);
    Answer serve(Turn &turn);
    Answer serveSignUp(const Turn &turn);
    Answer conclude(const RequestKind &kind, const wire::Form &form, Answer answer);
    bool isOverdue(const Turn &turn) const;
    std::string newAccountsKey(const Turn &turn) const;
    std::string saverOf(const wire::Form &form) const;

    store::Database &m_database;
    Clocks m_clocks;
    security::KeyedHash m_hash;
    security::VerifiedCredentials m_verified;
    security::FailureLimits m_limits;
    RefusedSaves m_refusedSaves;
};

} // namespace tarvex::requests
