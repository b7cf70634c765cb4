#include "AccountRequests.h"

#include "AccountTexts.h"
#include "Call.h"
#include "Handlers.h"
#include "InvitationCode.h"
#include "Invitations.h"
#include "NewAccounts.h"
#include "SignUpAnswer.h"
#include "WireText.h"

namespace tarvex::requests {

namespace {

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
    if (const std::string_view fault = textsFault(form.email, form.password, form.name); !fault.empty())
        return refusedSignUp(fault);
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
        full.reason = Reason::NoAccounts;
        return full;
    }
    return {};
}

Answer signUp(store::Connection &connection, const wire::SignUpForm &form, const SignUpRules &rules,
              const std::string &passwordHash, const security::KeyedHash &hash, std::int64_t now)
{
    if (auto fault = accountFault(connection, form, rules, hash, now))
        return *fault;
    if (isByInvitation(rules))
        store::useInvitation(connection, security::invitationHash(form.code));
    const std::string name = wire::storableName(form.name).value_or("");
    createWithSet(connection, newAccount(loginKeys(hash, form.email), name, passwordHash, now)).value();
    return {.body = wire::signUpAccepted(), .format = Format::Json};
}

} // namespace tarvex::requests
