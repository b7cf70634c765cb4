#pragma once

#include "Accounts.h"
#include "Answer.h"
#include "AnswerCache.h"
#include "Clocks.h"
#include "Database.h"
#include "Failures.h"
#include "Form.h"
#include "KeyedHash.h"
#include "Purge.h"
#include "RefusedSaves.h"
#include "RequestKind.h"
#include "SignUpForm.h"
#include "SignUpRules.h"
#include "VerifiedCredentials.h"

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

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
    /// Leaves nothing of the request in memory.
    ~Turn();
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// What must be done before there is an answer.
    enum class Step {
        Answer, ///< nothing
        Hash,   ///< Service::verify()
        Read,   ///< more of the database than is read in a moment
        Write,
    };
    Step step() const { return m_step; }
    /// Whose turn it is; 0 as long as that is not known.
    std::int64_t accountId() const { return m_credentials.accountId; }
    /// The digest that the sender signs in with; empty where there is none.
    std::string_view login() const { return m_signUp ? "" : m_form.field(/*number=*/2).value_or(""); }

private:
    friend class Service;

    Request m_request;
    const RequestKind &m_kind;
    wire::Form m_form; // its views point into m_request
    std::optional<wire::SignUpForm> m_signUp;
    store::Credentials m_credentials;
    bool m_isExhausted = false; // as the database knows it
    std::string m_newPasswordHash;
    std::optional<Answer> m_answer;
    Step m_step = Step::Answer;
};

/// Turns request bodies into answers; knows no sockets and no SQL. For many threads.
///
/// A request takes up to three steps, so that the caller decides where each one runs: begin() takes a moment,
/// and for most requests it is all; verify() burns 20 ms and 19 MiB on a password, where Turn::step() asks
/// for it; finish() reads or writes what is left to be, and waits for the disk.
class Service
{
public:
    /// How long a request may be on its way; one that took longer is refused instead of begun.
    static constexpr std::chrono::seconds patience{15};

    /// The hash is that of the installation, see openInstallation().
    Service(store::Database &database, const security::KeyedHash &hash, Clocks clocks = {},
            SignUpRules signUpRules = {});

    std::unique_ptr<Turn> begin(Request request);
    void verify(Turn &turn);
    Answer finish(Turn &turn);
    /// The same for a turn that is to write, without waiting: `done` is told on another thread.
    void finishLater(const std::shared_ptr<Turn> &turn, std::function<void(const Answer &)> done);

    /// A small step of what the database needs now and then; to be called every second or so. Does not wait.
    void keepHouse() { m_purge.step(); }

    /// Ends a turn that was begun and, for want of room, will be neither verified nor finished.
    Answer giveUp(Turn &turn);

    /// The answer to a request that will not be served, of which the body's beginning is enough. It counts as
    /// a refused save where it was one.
    Answer refuse(std::string_view body, Outcome outcome);

private:
    bool isFormSound(Turn &turn);
    void lookHastily(Turn &turn, store::Connection &connection);
    void look(Turn &turn, store::Connection &connection);
    void findAccount(Turn &turn, store::Connection &connection);
    void lookFor(Turn &turn, store::Connection &connection);
    void decide(Turn &turn);
    void readAll(Turn &turn);
    Failures::Keys limitedKeys(const Turn &turn) const;
    bool isVerified(const Turn &turn);
    void verifyPassword(Turn &turn);
    Answer handled(Turn &turn, store::Connection &connection);
    void write(Turn &turn, store::Connection &connection);
    void written(Turn &turn, const std::exception_ptr &failure);
    Answer end(Turn &turn);
    Answer conclude(const RequestKind &kind, const wire::Form &form, Answer answer);
    bool isOverdue(const Turn &turn) const;
    std::string saverOf(const wire::Form &form) const;

    store::Database &m_database;
    Clocks m_clocks;
    SignUpRules m_signUpRules;
    security::KeyedHash m_hash;
    security::VerifiedCredentials m_verified;
    Failures m_failures;
    AnswerCache m_answers;
    RefusedSaves m_refusedSaves;
    Purge m_purge;
};

} // namespace tarvex::requests
