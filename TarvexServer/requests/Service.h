#pragma once

#include "Accounts.h"
#include "Answer.h"
#include "AnswerCache.h"
#include "Clocks.h"
#include "Database.h"
#include "Failures.h"
#include "Form.h"
#include "KeyedHash.h"
#include "Measures.h"
#include "Purge.h"
#include "RefusedSaves.h"
#include "RequestKind.h"
#include "Sightings.h"
#include "SignIns.h"
#include "SignUpForm.h"
#include "SignUpRules.h"

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
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
        Read,   ///< Service::read(): more of the database than is read in a moment
        Write,  ///< Service::finishLater()
    };
    Step step() const { return m_step; }
    /// Whose turn it is; 0 as long as that is not known.
    std::int64_t accountId() const { return m_credentials.accountId; }
    const std::string &peer() const { return m_request.peer; }
    /// The digest that the sender signs in with; empty where there is none.
    std::string_view login() const { return m_signUp ? "" : m_form.field(/*number=*/2).value_or(""); }

private:
    friend class Service;

    Request m_request;
    wire::Form m_form; // its views point into m_request
    const RequestKind &m_kind;
    std::string m_signIn; // login and password, hashed; empty where there are none
    std::optional<wire::SignUpForm> m_signUp;
    store::Credentials m_credentials;
    bool m_isExhausted = false; // as the database knows it
    std::string m_newPasswordHash;
    std::optional<Answer> m_answer;
    Step m_step = Step::Answer;
};

/// Whether a password is right, asked by whoever does not ask by the protocol.
struct PasswordQuestion
{
    std::string login = {};     ///< its digest; empty where the account is known
    std::int64_t accountId = 0; ///< of whom is signed in already
    std::string password = {};  ///< its digest
    std::string peer = {};      ///< as that of a Request
    std::chrono::steady_clock::time_point arrival = {};

    /// Leaves no digest in memory.
    ~PasswordQuestion();
};

struct PasswordAnswer
{
    Outcome outcome = Outcome::NotSignedIn;
    std::int64_t accountId = 0;
    std::int64_t version = 0; ///< of the account when the password was right
};

/// Turns request bodies into answers; knows no sockets and no SQL. For many threads.
///
/// A request takes a few steps, which Turn::step() asks for, so that the caller decides where each one runs:
/// begin() takes a moment unless the body is long, and for most requests it is all; read() waits for the
/// database; verify() burns 20 ms and 19 MiB on a password; finish() does what is left of all this, writes,
/// and waits for the disk.
class Service
{
public:
    /// How long a request may be on its way; one that took longer is refused instead of begun.
    static constexpr std::chrono::seconds patience{15};
    /// A longer body takes more than a moment even to be parted into its fields.
    static constexpr std::size_t momentaryBody = 64UL * 1024;

    /// The hash is that of the installation, see openInstallation().
    Service(store::Database &database, const security::KeyedHash &hash, Clocks clocks = {},
            SignUpRules signUpRules = {});

    std::unique_ptr<Turn> begin(Request request);
    void read(Turn &turn);
    void verify(Turn &turn);
    Answer finish(Turn &turn);
    /// The same for a turn that is to write, without waiting: `done` is told on another thread.
    void finishLater(const std::shared_ptr<Turn> &turn, std::function<void(const Answer &)> done);

    /// Answers within the limits of signing in and in their time, also for an account that is closed. Burns
    /// as much as verify() does. Throws what Database::read() does.
    PasswordAnswer check(const PasswordQuestion &question);

    /// From now on others may make an account. From any thread.
    void setSignUpRules(const SignUpRules &rules);
    SignUpRules signUpRules();

    /// What was done so far, to which whoever serves over a network adds what it alone knows.
    Measures &measures() { return m_measures; }
    const Measures &measures() const { return m_measures; }

    /// A small step of what the database needs now and then; to be called every second or so. Does not wait.
    void keepHouse() { m_purge.step(); }

    /// Ends a turn that for want of room goes no further, or whose answer cannot be kept.
    Answer giveUp(Turn &turn);

    /// Goes on once other processes know of the answers before: to one that isBeingNoted the client may send
    /// what depends on it anywhere. On another thread.
    void onceNoted(std::function<void()> goOn);

    /// The answer to a request that will not be served, of which the body's beginning is enough. It counts as
    /// a refused save where it was one.
    Answer refuse(std::string_view body, Outcome outcome);

private:
    bool isFormSound(Turn &turn);
    void lookHastily(Turn &turn, store::Connection &connection);
    void look(Turn &turn, store::Connection &connection);
    bool lookAhead(Turn &turn, store::Connection &connection);
    void findAccount(Turn &turn, store::Connection &connection);
    void lookFor(Turn &turn, store::Connection &connection);
    void decide(Turn &turn);
    bool refuseIfOverdue(Turn &turn);
    Failures::Keys limitedKeys(const Turn &turn) const;
    bool isVerified(const Turn &turn);
    void verifyPassword(Turn &turn);
    Answer handled(Turn &turn, store::Connection &connection);
    void write(Turn &turn, store::Connection &connection);
    void written(Turn &turn, const std::exception_ptr &failure);
    Answer end(Turn &turn);
    Answer conclude(const RequestKind &kind, const wire::Form &form, Answer answer);
    store::Database::Work writing(Turn &turn);
    Failures::Keys limitedKeys(const PasswordQuestion &question) const;
    bool isOverdue(const Turn &turn) const;
    std::string signInOf(const wire::Form &form) const;

    store::Database &m_database;
    Clocks m_clocks;
    std::mutex m_signUpMutex;
    SignUpRules m_signUpRules;
    Measures m_measures;
    security::KeyedHash m_hash;
    SignIns m_signIns;
    Failures m_failures;
    AnswerCache m_answers;
    RefusedSaves m_refusedSaves;
    Purge m_purge;
    Sightings m_sightings;
};

} // namespace tarvex::requests
