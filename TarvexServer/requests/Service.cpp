#include "Service.h"

#include "AccountRequests.h"
#include "Call.h"
#include "Installation.h"
#include "Md5.h"
#include "NewAccounts.h"
#include "PasswordHash.h"
#include "Quotas.h"
#include "Records.h"
#include "Wipe.h"

#include <new>

namespace tarvex::requests {

namespace {

bool hasCredentials(const wire::Form &form)
{
    return security::isSignInDigest(form.field(/*number=*/2).value_or("")) &&
           security::isSignInDigest(form.field(/*number=*/3).value_or(""));
}

constexpr std::string_view savingKind = "create-some-goals";
constexpr std::string_view drawingKind = "get-random-goal"; // another one each time

/// Where the goals of a save belong, as far as that can be seen.
std::optional<wire::GoalPlace> placeOf(const wire::Form &form)
{
    return wire::goalPlaceHint(form.field(/*number=*/4).value_or(""));
}

Answer failure(const RequestKind &kind, const std::exception_ptr &thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const store::TransactionHindered &error) {
        return refusalOf(kind, Outcome::Busy, Reason::None, error.what());
    } catch (const store::NoRoom &error) {
        return refusalOf(kind, Outcome::Failed, Reason::NoRoom, error.what());
    } catch (const std::bad_alloc &) {
        return refusalOf(kind, Outcome::Busy);
    } catch (const std::exception &error) {
        return refusalOf(kind, Outcome::Failed, Reason::None, error.what());
    }
}

} // namespace

Turn::Turn(Request request)
    : m_request(std::move(request)), m_form(m_request.body), m_kind(requestKindOfBody(m_request.body, m_form))
{
}

Turn::~Turn()
{
    security::wipe(m_request.body);
}

Service::Service(store::Database &database, const security::KeyedHash &hash, Clocks clocks,
                 SignUpRules signUpRules)
    : m_database(database), m_clocks(std::move(clocks)), m_signUpRules(signUpRules), m_hash(hash),
      m_failures(database, m_clocks), m_refusedSaves(database, m_clocks), m_purge(database, m_clocks),
      m_sightings(database, m_clocks)
{
    security::matchesPassword(/*hash=*/"", /*digest=*/""); // the first one costs twice
}

Answer Service::refuse(std::string_view body, Outcome outcome)
{
    const RequestKind &kind = requestKindOfBody(body);
    return conclude(kind, wire::Form(body), refusalOf(kind, outcome));
}

std::unique_ptr<Turn> Service::begin(Request request)
{
    auto turn = std::make_unique<Turn>(std::move(request));
    try {
        if (!isFormSound(*turn))
            return turn;
        if (turn->m_request.body.size() <= momentaryBody &&
            m_database.readInAMoment([&](store::Connection &connection) { lookHastily(*turn, connection); }))
            decide(*turn);
        else
            turn->m_step = Turn::Step::Read;
    } catch (...) {
        turn->m_answer = failure(turn->m_kind, std::current_exception());
    }
    return turn;
}

/// Whether there is anything to look up for the request; else it has its answer.
bool Service::isFormSound(Turn &turn)
{
    if (turn.m_kind.name.empty()) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::Invalid);
    } else if (turn.m_kind.handler != nullptr) {
        if (hasCredentials(turn.m_form))
            turn.m_signIn = signInOf(turn.m_form);
        else
            turn.m_answer = refusalOf(turn.m_kind, Outcome::NotSignedIn);
    } else {
        const SignUpRules rules = signUpRules();
        turn.m_signUp = readSignUp(turn.m_request.body, rules);
        turn.m_answer =
            turn.m_signUp ? signUpFault(*turn.m_signUp, rules) : refusalOf(turn.m_kind, Outcome::Invalid);
        if (!turn.m_answer && m_failures.isExhausted(limitedKeys(turn)))
            turn.m_answer = refusalOf(turn.m_kind, Outcome::TooManyAttempts);
    }
    return !turn.m_answer;
}

/// The same as look(), which it spares if the answer is known. In one thread at a time.
void Service::lookHastily(Turn &turn, store::Connection &connection)
{
    const bool isKept = turn.m_kind.access == Access::Read && turn.m_kind.name != drawingKind;
    const std::string key = isKept ? m_hash({"answer", turn.m_request.body}) : "";
    findAccount(turn, connection);
    if (const std::string *answer = m_answers.find(key, turn.m_credentials)) {
        m_measures.remembered.add();
        turn.m_answer = {.body = *answer, .format = turn.m_kind.format};
        return;
    }
    if (isKept)
        m_measures.notRemembered.add();
    lookFor(turn, connection);
    if (isKept && turn.m_answer && turn.m_answer->outcome == Outcome::Done)
        m_answers.keep(key, turn.m_credentials, turn.m_answer->body);
}

/// All of a request that reading can do. May be begun anew.
void Service::look(Turn &turn, store::Connection &connection)
{
    if (lookAhead(turn, connection))
        return;
    findAccount(turn, connection);
    lookFor(turn, connection);
}

/// Answers a read of somebody who is signed in as if the account were what it was, and asks whether it is at
/// the same time.
bool Service::lookAhead(Turn &turn, store::Connection &connection)
{
    if (turn.m_signUp || turn.m_kind.access != Access::Read)
        return false;
    const auto known = m_signIns.find(turn.m_signIn);
    if (!known)
        return false;
    turn.m_credentials.accountId = known->id;
    store::AwaitedCredentials awaited(connection, known->id);
    Answer answer = handled(turn, connection);
    turn.m_credentials = awaited.get().value_or(store::Credentials());
    if (!known->holdsFor(turn.m_credentials))
        return false;
    turn.m_answer = std::move(answer);
    return true;
}

void Service::findAccount(Turn &turn, store::Connection &connection)
{
    if (turn.m_signUp)
        return;
    std::optional<store::Credentials> found;
    if (const auto known = m_signIns.find(turn.m_signIn))
        found = store::credentialsOf(connection, known->id);
    turn.m_credentials = found.value_or(store::Credentials());
    if (!isVerified(turn))
        turn.m_credentials =
            store::findCredentials(connection, loginKey(m_hash, turn.login())).value_or(store::Credentials());
}

/// What is to be looked up once the account is known.
void Service::lookFor(Turn &turn, store::Connection &connection)
{
    if (!turn.m_signUp && isVerified(turn)) {
        if (turn.m_kind.access == Access::Read)
            turn.m_answer = handled(turn, connection);
        return;
    }
    turn.m_isExhausted = m_failures.isExhausted(limitedKeys(turn), connection);
    if (turn.m_signUp && !turn.m_isExhausted)
        turn.m_answer = accountFault(connection, *turn.m_signUp, signUpRules(), m_hash, m_clocks.seconds());
}

/// What comes next, after a look.
void Service::decide(Turn &turn)
{
    if (turn.m_signUp && turn.m_answer && turn.m_answer->outcome == Outcome::Invalid)
        m_failures.countFailure(limitedKeys(turn)); // it tells who has an account
    turn.m_step = Turn::Step::Answer;
    if (turn.m_answer) {
        m_sightings.note(turn.m_credentials);
        return;
    }
    if (!turn.m_signUp && isVerified(turn))
        turn.m_step = Turn::Step::Write;
    else if (turn.m_isExhausted || m_failures.isExhausted(limitedKeys(turn)))
        turn.m_answer = refusalOf(turn.m_kind, Outcome::TooManyAttempts);
    else
        turn.m_step = Turn::Step::Hash;
}

/// Whom the turn counts against.
Failures::Keys Service::limitedKeys(const Turn &turn) const
{
    const std::string &peer = turn.m_request.peer;
    Failures::Keys keys;
    if (!turn.m_signUp)
        keys.login = loginKey(m_hash, turn.login());
    if (peer.empty())
        return keys;
    keys.address = m_hash({"peer", peer});
    if (turn.m_signUp)
        keys.newAccounts = m_hash({"sign-up", peer});
    else
        keys.loginThere = m_hash({"login", turn.login(), peer});
    return keys;
}

bool Service::isVerified(const Turn &turn)
{
    const auto known = m_signIns.find(turn.m_signIn);
    return known && known->holdsFor(turn.m_credentials);
}

void Service::verify(Turn &turn)
{
    try {
        if (isOverdue(turn))
            turn.m_answer = refusalOf(turn.m_kind, Outcome::Busy);
        else if (turn.m_signUp)
            turn.m_newPasswordHash = newPasswordHash(turn.m_signUp->password);
        else
            verifyPassword(turn);
    } catch (...) {
        turn.m_answer = failure(turn.m_kind, std::current_exception());
    }
    const bool isRead = turn.m_kind.access == Access::Read;
    turn.m_step = turn.m_answer ? Turn::Step::Answer : isRead ? Turn::Step::Read : Turn::Step::Write;
}

void Service::verifyPassword(Turn &turn)
{
    if (isVerified(turn)) // since it began to wait
        return;
    if (m_failures.isExhausted(limitedKeys(turn))) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::TooManyAttempts);
        return;
    }
    const std::string_view password = *turn.m_form.field(/*number=*/3);
    const store::Credentials &credentials = turn.m_credentials;
    if (!security::matchesPassword(credentials.passwordHash, password)) {
        m_failures.countFailure(limitedKeys(turn));
        turn.m_answer = refusalOf(turn.m_kind, Outcome::NotSignedIn);
        return;
    }
    m_signIns.remember(turn.m_signIn, credentials);
}

Answer Service::giveUp(Turn &turn)
{
    turn.m_answer = refusalOf(turn.m_kind, Outcome::Busy);
    return end(turn);
}

/// The answer of a turn that is over; by the time it is told, nothing of the request is in memory.
Answer Service::end(Turn &turn)
{
    Answer answer = conclude(turn.m_kind, turn.m_form, std::move(*turn.m_answer));
    security::wipe(turn.m_request.body);
    return answer;
}

Answer Service::finish(Turn &turn)
{
    while (!refuseIfOverdue(turn) && (turn.m_step == Turn::Step::Read || turn.m_step == Turn::Step::Hash))
        turn.m_step == Turn::Step::Read ? read(turn) : verify(turn);
    if (turn.m_step == Turn::Step::Write) {
        std::exception_ptr failure;
        try {
            m_database.write(writing(turn));
        } catch (...) {
            failure = std::current_exception();
        }
        written(turn, failure);
    }
    return end(turn);
}

void Service::finishLater(const std::shared_ptr<Turn> &turn, std::function<void(const Answer &)> done)
{
    m_database.write(writing(*turn), [this, turn, done = std::move(done)](const std::exception_ptr &failure) {
        try {
            written(*turn, failure);
            done(end(*turn));
        } catch (const std::exception &) { // no memory; the sender has a time limit
        }
    });
}

/// Whether it has its answer, be it that it waited for too long.
bool Service::refuseIfOverdue(Turn &turn)
{
    if (turn.m_step != Turn::Step::Answer && isOverdue(turn)) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::Busy);
        turn.m_step = Turn::Step::Answer;
    }
    return turn.m_step == Turn::Step::Answer;
}

void Service::read(Turn &turn)
{
    if (refuseIfOverdue(turn))
        return;
    try {
        m_database.read([&](store::Connection &connection) { look(turn, connection); });
        decide(turn);
    } catch (...) {
        turn.m_answer = failure(turn.m_kind, std::current_exception());
        turn.m_step = Turn::Step::Answer;
    }
}

/// What the kind's own function answers, inside a transaction.
Answer Service::handled(Turn &turn, store::Connection &connection)
{
    m_refusedSaves.signedIn(turn.m_signIn);
    Call call{.connection = connection,
              .form = turn.m_form,
              .refusedSaves = m_refusedSaves,
              .accountId = turn.m_credentials.accountId,
              .saver = turn.m_signIn,
              .now = m_clocks.seconds()};
    try {
        Answer answer{.body = turn.m_kind.handler(call), .format = turn.m_kind.format};
        if (turn.m_kind.name == savingKind)
            m_refusedSaves.accepted(connection, turn.m_signIn, placeOf(turn.m_form));
        return answer;
    } catch (const RequestRefused &refused) {
        return refusalOf(turn.m_kind, Outcome::Invalid, refused.reason());
    } catch (const store::QuotaExceeded &) {
        return refusalOf(turn.m_kind, Outcome::Invalid, Reason::Quota);
    }
}

/// The work of a turn that is to be written, which notes how long it waited for that.
store::Database::Work Service::writing(Turn &turn)
{
    return [this, &turn, since = std::chrono::steady_clock::now()](store::Connection &connection) {
        m_measures.writerWaits.add(std::chrono::steady_clock::now() - since);
        write(turn, connection);
    };
}

void Service::write(Turn &turn, store::Connection &connection)
{
    if (isOverdue(turn)) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::Busy);
        return;
    }
    if (!turn.m_signUp)
        store::countChange(connection, turn.m_credentials.accountId);
    if (turn.m_kind.access == Access::Add)
        m_database.requireRoom(connection);
    turn.m_answer = turn.m_signUp ? signUp(connection, *turn.m_signUp, signUpRules(), turn.m_newPasswordHash,
                                           m_hash, m_clocks.seconds())
                                  : handled(turn, connection);
    if (turn.m_answer->outcome != Outcome::Done)
        throw RequestRefused(); // so that nothing of it stays
    if (!turn.m_signUp)
        m_sightings.note(turn.m_credentials, connection);
}

void Service::written(Turn &turn, const std::exception_ptr &failure)
{
    turn.m_step = Turn::Step::Answer;
    const bool isRefused = turn.m_answer && turn.m_answer->outcome != Outcome::Done;
    if (failure && !isRefused)
        turn.m_answer = requests::failure(turn.m_kind, failure);
    if (!turn.m_signUp)
        return;
    if (turn.m_answer->outcome == Outcome::Done)
        m_failures.countNewAccount(limitedKeys(turn));
    else if (turn.m_answer->outcome == Outcome::Invalid)
        m_failures.countFailure(limitedKeys(turn));
}

Answer Service::conclude(const RequestKind &kind, const wire::Form &form, Answer answer)
{
    const bool isRefusedForGood = answer.outcome == Outcome::NotSignedIn; // and so is the delete behind it
    if (kind.name == savingKind && answer.outcome != Outcome::Done && !isRefusedForGood &&
        hasCredentials(form))
        answer.isBeingNoted = m_refusedSaves.refused(signInOf(form), placeOf(form));
    return answer;
}

void Service::onceNoted(std::function<void()> goOn)
{
    m_database.write([](store::Connection &) {}, // behind what is to be noted
                     [goOn = std::move(goOn)](const std::exception_ptr &) { goOn(); });
}

void Service::setSignUpRules(const SignUpRules &rules)
{
    const std::lock_guard lock(m_signUpMutex);
    m_signUpRules = rules;
}

SignUpRules Service::signUpRules()
{
    const std::lock_guard lock(m_signUpMutex);
    return m_signUpRules;
}

bool Service::isOverdue(const Turn &turn) const
{
    return m_clocks.steady() - turn.m_request.arrival > patience;
}

std::string Service::signInOf(const wire::Form &form) const
{
    return m_hash({form.field(/*number=*/2).value_or(""), form.field(/*number=*/3).value_or("")});
}

} // namespace tarvex::requests
