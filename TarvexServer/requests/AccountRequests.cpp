#include "AccountRequests.h"

#include "Call.h"
#include "Handlers.h"
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
constexpr std::size_t maximumTextSize = 1024;

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

std::optional<Answer> duplicateFault(store::Connection &connection, const wire::SignUpForm &form,
                                     const security::KeyedHash &hash)
{
    for (const std::string &login : loginKeys(hash, form.email)) {
        if (store::findCredentials(connection, login))
            return refusedSignUp("An account with this e-mail address already exists.");
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

Answer signUp(store::Connection &connection, const wire::SignUpForm &form, const std::string &passwordHash,
              const security::KeyedHash &hash, std::int64_t now)
{
    if (auto fault = duplicateFault(connection, form, hash))
        return *fault;
    const std::string name = wire::storableName(form.name).value_or("");
    const auto accountId =
        store::createAccount(connection, newAccount(loginKeys(hash, form.email), name, passwordHash, now));
    store::createSet(connection, accountId.value(), "My wheel");
    return {.body = wire::signUpAccepted(), .format = Format::Json};
}

} // namespace tarvex::requests
