#include "AccountRequests.h"

#include "Call.h"
#include "Handlers.h"
#include "NewAccounts.h"
#include "Sets.h"
#include "SignUpAnswer.h"
#include "WireText.h"

#include <algorithm>

namespace tarvex::requests {

namespace {

constexpr std::size_t maximumEmailSize = 254; // RFC 5321, 4.5.3.1.3, without the angle brackets
constexpr std::size_t maximumTextSize = 1024;

bool isOneOf(char character, std::string_view others)
{
    const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    return isLetter || (character >= '0' && character <= '9') ||
           others.find(character) != std::string_view::npos;
}

/// One "@", the characters addresses are usually made of, and a domain with a dot: what the client accepts,
/// and top-level domains of any length besides.
bool isEmailAddress(std::string_view text)
{
    const auto at = text.find('@');
    const auto dot = text.rfind('.');
    if (at == std::string_view::npos || dot == std::string_view::npos || at == 0 || dot < at + 2)
        return false;
    const std::string_view local = text.substr(0, at);
    const std::string_view domain = text.substr(at + 1, dot - at - 1);
    const std::string_view top = text.substr(dot + 1);
    return top.size() >= 2 &&
           std::all_of(local.begin(), local.end(), [](char c) { return isOneOf(c, "._%+-"); }) &&
           std::all_of(domain.begin(), domain.end(), [](char c) { return isOneOf(c, ".-"); }) &&
           std::all_of(top.begin(), top.end(), [](char c) { return isOneOf(c, "") && (c < '0' || c > '9'); });
}

Answer refusedSignUp(std::string_view message)
{
    return Answer{.body = wire::signUpRefused(message),
                  .format = Format::Json,
                  .outcome = Outcome::Invalid,
                  .cause = {}};
}

} // namespace

std::string signIn(Call & /*call*/)
{
    return done();
}

std::optional<Answer> signUpFault(const wire::SignUpForm &form)
{
    if (form.email.empty() || form.password.empty() || form.name.empty())
        return refusedSignUp("You must fill in all fields.");
    if (form.email.size() > maximumEmailSize)
        return refusedSignUp("The e-mail address is too long.");
    if (form.password.size() > maximumTextSize || form.name.size() > maximumTextSize)
        return refusedSignUp("The name or the password is too long.");
    if (!isEmailAddress(form.email))
        return refusedSignUp("The e-mail address is not valid.");
    return {};
}

std::optional<Answer> duplicateFault(store::Connection &connection, const wire::SignUpForm &form)
{
    for (const std::string &digest : loginDigests(form.email)) {
        if (store::findCredentials(connection, digest))
            return refusedSignUp("An account with this e-mail address already exists.");
    }
    return {};
}

Answer signUp(store::Connection &connection, const wire::SignUpForm &form, const std::string &passwordHash,
              std::int64_t now)
{
    if (auto fault = duplicateFault(connection, form))
        return *fault;
    const std::string name = wire::storableName(form.name).value_or("");
    const auto accountId =
        store::createAccount(connection, newAccount(/*login=*/form.email, name, passwordHash, now));
    store::createSet(connection, accountId.value(), firstSetName());
    return Answer{
        .body = wire::signUpAccepted(), .format = Format::Json, .outcome = Outcome::Done, .cause = {}};
}

} // namespace tarvex::requests
