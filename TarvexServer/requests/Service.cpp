#include "Service.h"

#include "AccountRequests.h"
#include "Call.h"
#include "Md5.h"
#include "PasswordHash.h"
#include "Records.h"

#include <algorithm>

namespace tarvex::requests {

namespace {

bool hasCredentials(const wire::Form &form)
{
    return security::isSignInDigest(form.field(/*number=*/2).value_or("")) &&
           security::isSignInDigest(form.field(/*number=*/3).value_or(""));
}

Answer failure(const RequestKind &kind, const std::exception &error)
{
    Answer answer = refusalOf(kind, Outcome::Failed);
    answer.cause = error.what();
    return answer;
}

} // namespace

Turn::Turn(Request request)
    : m_request(std::move(request)), m_kind(requestKindOfBody(m_request.body)), m_form(m_request.body)
{
}

Service::Service(store::Database &database, Clocks clocks)
    : m_database(database), m_clocks(std::move(clocks)), m_limits(m_clocks.steady),
      m_refusedSaves(m_clocks.steady)
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
        if (turn->m_kind.name.empty())
            turn->m_answer = refusalOf(turn->m_kind, Outcome::Invalid);
        else if (turn->m_kind.handler == nullptr)
            beginSignUp(*turn);
        else
            beginSignedIn(*turn);
    } catch (const std::exception &error) {
        turn->m_answer = failure(turn->m_kind, error);
    }
    turn->m_needsHashing = turn->m_needsHashing && !turn->m_answer;
    return turn;
}

void Service::beginSignUp(Turn &turn)
{
    turn.m_signUp = wire::readSignUpForm(turn.m_request.body);
    if (!turn.m_signUp) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::Invalid);
        return;
    }
    turn.m_answer = signUpFault(*turn.m_signUp);
    if (turn.m_answer)
        return;
    if (isExhausted(turn) || m_limits.isExhausted(newAccountsKey(turn))) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::TooManyAttempts);
        return;
    }
    m_database.read(
        [&](store::Connection &connection) { turn.m_answer = duplicateFault(connection, *turn.m_signUp); });
    if (turn.m_answer)
        countFailure(turn); // it tells who has an account
    turn.m_needsHashing = true;
}

void Service::beginSignedIn(Turn &turn)
{
    const std::string login(turn.m_form.field(/*number=*/2).value_or(""));
    if (!hasCredentials(turn.m_form)) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::NotSignedIn);
        return;
    }
    m_database.read([&](store::Connection &connection) {
        turn.m_credentials = store::findCredentials(connection, login).value_or(store::Credentials());
    });
    if (isVerified(turn))
        return;
    if (isExhausted(turn))
        turn.m_answer = refusalOf(turn.m_kind, Outcome::TooManyAttempts);
    turn.m_needsHashing = true;
}

/// What failures of the turn count against: the login, the address.
std::vector<std::string> Service::limitedKeys(const Turn &turn) const
{
    std::vector<std::string> keys;
    if (!turn.m_request.peer.empty())
        keys.push_back(m_hash({"peer", turn.m_request.peer}));
    if (!turn.m_signUp)
        keys.push_back(m_hash({"login", turn.m_form.field(/*number=*/2).value_or("")}));
    return keys;
}

bool Service::isExhausted(const Turn &turn)
{
    const std::vector<std::string> keys = limitedKeys(turn);
    return std::any_of(keys.begin(), keys.end(),
                       [&](const std::string &key) { return m_limits.isExhausted(key); });
}

void Service::countFailure(const Turn &turn)
{
    for (const std::string &key : limitedKeys(turn))
        m_limits.countFailure(key);
}

bool Service::isVerified(const Turn &turn)
{
    return m_verified.contains(turn.m_credentials.accountId, turn.m_credentials.version,
                               turn.m_form.field(/*number=*/3).value_or(""));
}

void Service::verify(Turn &turn)
{
    try {
        if (isOverdue(turn))
            turn.m_answer = refusalOf(turn.m_kind, Outcome::Busy);
        else if (turn.m_signUp)
            turn.m_newPasswordHash = security::hashPassword(security::signInDigest(turn.m_signUp->password));
        else
            verifyPassword(turn);
    } catch (const std::exception &error) {
        turn.m_answer = failure(turn.m_kind, error);
    }
}

void Service::verifyPassword(Turn &turn)
{
    if (isVerified(turn)) // since it began to wait
        return;
    if (isExhausted(turn)) {
        turn.m_answer = refusalOf(turn.m_kind, Outcome::TooManyAttempts);
        return;
    }
    const std::string_view password = *turn.m_form.field(/*number=*/3);
    const store::Credentials &credentials = turn.m_credentials;
    if (!security::matchesPassword(credentials.passwordHash, password)) {
        countFailure(turn);
        turn.m_answer = refusalOf(turn.m_kind, Outcome::NotSignedIn);
        return;
    }
    m_verified.remember(credentials.accountId, credentials.version, password);
}

Answer Service::giveUp(const Turn &turn)
{
    return conclude(turn.m_kind, turn.m_form, refusalOf(turn.m_kind, Outcome::Busy));
}

Answer Service::finish(Turn &turn)
{
    if (!turn.m_answer && isOverdue(turn))
        turn.m_answer = refusalOf(turn.m_kind, Outcome::Busy);
    return conclude(turn.m_kind, turn.m_form, turn.m_answer ? *turn.m_answer : serve(turn));
}

Answer Service::serve(Turn &turn)
{
    try {
        if (turn.m_signUp)
            return serveSignUp(turn);
        const std::string saver = saverOf(turn.m_form);
        m_refusedSaves.signedIn(saver);
        std::string body;
        const auto work = [&](store::Connection &connection) {
            Call call{.connection = connection,
                      .form = turn.m_form,
                      .refusedSaves = m_refusedSaves,
                      .accountId = turn.m_credentials.accountId,
                      .saver = saver,
                      .now = m_clocks.seconds()};
            body = turn.m_kind.handler(call);
        };
        if (turn.m_kind.access == Access::Write)
            m_database.write(work);
        else
            m_database.read(work);
        return {.body = std::move(body), .format = turn.m_kind.format};
    } catch (const RequestRefused &) {
        return refusalOf(turn.m_kind, Outcome::Invalid);
    } catch (const std::exception &error) {
        return failure(turn.m_kind, error);
    }
}

Answer Service::serveSignUp(const Turn &turn)
{
    Answer answer;
    m_database.write([&](store::Connection &connection) {
        answer = signUp(connection, *turn.m_signUp, turn.m_newPasswordHash, m_clocks.seconds());
    });
    if (answer.outcome != Outcome::Done)
        countFailure(turn);
    else if (!turn.m_request.peer.empty())
        m_limits.countFailure(newAccountsKey(turn));
    return answer;
}

Answer Service::conclude(const RequestKind &kind, const wire::Form &form, Answer answer)
{
    const bool isRefusedForGood = answer.outcome == Outcome::NotSignedIn; // and so is the delete behind it
    if (kind.name != "create-some-goals" || isRefusedForGood || !hasCredentials(form))
        return answer;
    const auto place = wire::goalPlaceHint(form.field(/*number=*/4).value_or(""));
    if (answer.outcome != Outcome::Done)
        m_refusedSaves.refused(saverOf(form), place);
    else if (place)
        m_refusedSaves.accepted(saverOf(form), *place);
    return answer;
}

bool Service::isOverdue(const Turn &turn) const
{
    return m_clocks.steady() - turn.m_request.arrival > patience;
}

std::string Service::newAccountsKey(const Turn &turn) const
{
    return m_hash({"sign-up", turn.m_request.peer});
}

std::string Service::saverOf(const wire::Form &form) const
{
    return m_hash({form.field(/*number=*/2).value_or(""), form.field(/*number=*/3).value_or("")});
}

} // namespace tarvex::requests
