#include "AccountRequests.h"

#include "Call.h"
#include "Handlers.h"
#include "InvitationCode.h"
#include "Invitations.h"
#include "Md5.h"
#include "NewAccounts.h"
#include "PasswordHash.h"
#include "Sets.h"
#include "SignUpAnswer.h"
#include "Wipe.h"
#include "WireText.h"

#include <boost/regex.hpp>

namespace tarvex::requests {

namespace {

constexpr std::size_t maximumEmailSize = 254; // RFC 5321, 4.5.3.1.3, without the angle brackets

/// One "@", the characters addresses are usually made of, and a domain with a dot: what the client accepts,
/// and top-level domains of any length besides.
bool isEmailAddress(std::string_view text)
{
    static const boost::regex form(R"([A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,})");
    return boost::regex_match(text.begin(), text.end(), form);
}

Answer refusedSignUp(std::string_view message)
{
    return {.body = wire::signUpRefused(message), .format = Format::Json, .outcome = Outcome::Invalid};
}

bool isByInvitation(const SignUpRules &rules)
{
    return rules.mode == SignUpRules::Mode::Invitation;
}

} // namespace

std::string signIn(Call & /*call*/)
{
    return done();
}

std::optional<wire::SignUpForm> readSignUp(std::string_view body, const SignUpRules &rules)
{
    auto form = wire::readSignUpForm(body);
    if (!form || !isByInvitation(rules))
        return form;
    form->code = security::trailingInvitationCode(form->name);
    form->name.remove_suffix(form->code.size());
    form->name = form->name.substr(0, form->name.find_last_not_of(" -") + 1);
    return form;
}

std::optional<Answer> signUpFault(const wire::SignUpForm &form, const SignUpRules &rules)
{
    if (rules.mode == SignUpRules::Mode::Closed)
        return refusedSignUp("This service takes no new accounts.");
    if (form.email.empty() || form.password.empty() || form.name.empty())
        return refusedSignUp("You must fill in all fields.");
    if (form.email.size() > maximumEmailSize)
        return refusedSignUp("The e-mail address is too long.");
    if (form.password.size() > wire::maximumNameSize || !wire::storableName(form.name))
        return refusedSignUp("The name or the password is too long.");
    if (!isEmailAddress(form.email))
        return refusedSignUp("The e-mail address is not valid.");
    if (isByInvitation(rules) && form.code.empty())
        return refusedSignUp("This service takes new accounts by invitation only. Please type your code"
                             " behind your name.");
    return {};
}

std::optional<Answer> accountFault(store::Connection &connection, const wire::SignUpForm &form,
                                   const SignUpRules &rules, const security::KeyedHash &hash,
                                   std::int64_t now)
{
    if (isByInvitation(rules) && !store::hasInvitation(connection, security::invitationHash(form.code), now))
        return refusedSignUp("The code of the invitation is wrong, was used already or has expired.");
    for (const std::string &login : loginKeys(hash, form.email)) {
        if (store::findCredentials(connection, login))
            return refusedSignUp("An account with this e-mail address already exists.");
    }
    if (store::countAccounts(connection) >= rules.mostAccounts) {
        Answer full = refusedSignUp("This service takes no more accounts.");
        full.outcome = Outcome::Failed;
        full.cause = "there are as many accounts as there may be";
        return full;
    }
    return {};
}

std::string newPasswordHash(const wire::SignUpForm &form)
{
    std::string digest = security::signInDigest(form.password);
    std::string passwordHash = security::hashPassword(digest);
    security::wipe(digest);
    return passwordHash;
}

Answer signUp(store::Connection &connection, const wire::SignUpForm &form, const SignUpRules &rules,
              const std::string &passwordHash, const security::KeyedHash &hash, std::int64_t now)
{
    if (auto fault = accountFault(connection, form, rules, hash, now))
        return *fault;
    if (isByInvitation(rules))
        store::useInvitation(connection, security::invitationHash(form.code));
    const std::string name = wire::storableName(form.name).value_or("");
    const auto accountId =
        store::createAccount(connection, newAccount(loginKeys(hash, form.email), name, passwordHash, now));
    store::createSet(connection, accountId.value(), "My wheel");
    return {.body = wire::signUpAccepted(), .format = Format::Json};
}

} // namespace tarvex::requests
