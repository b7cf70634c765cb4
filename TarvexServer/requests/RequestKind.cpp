#include "RequestKind.h"

#include "Form.h"
#include "Handlers.h"
#include "SignUpAnswer.h"
#include "SignUpForm.h"

#include <algorithm>
#include <array>

namespace tarvex::requests {

namespace {

constexpr std::string_view createNewUser = "create-new-user";
constexpr std::string_view signInKind = "sign-in";
constexpr std::string_view setChecked = "set-checked-area-percent";

constexpr std::array<RequestKind, kindCount> kinds = {{
    {signInKind, Access::Read, Format::Plain, signIn},
    {createNewUser, Access::Add, Format::Json, nullptr},
    {"get-sets", Access::Read, Format::Xml, getSets},
    {"get-areas", Access::Read, Format::Xml, getAreas},
    {"get-goals", Access::Read, Format::Xml, getGoals},
    {"get-complex-goals-for-sets", Access::Read, Format::Xml, getComplexGoalsForSets},
    {"get-random-goal", Access::Read, Format::Xml, getRandomGoal},
    {"create-sets", Access::Add, Format::Plain, createSets},
    {"set-sets-name", Access::Add, Format::Plain, setSetsName},
    {"delete-sets", Access::Change, Format::Plain, deleteSets},
    {"set-area-names", Access::Add, Format::Plain, setAreaNames},
    {"set-area-value", Access::Change, Format::Plain, setAreaValue},
    {"create-goal", Access::Add, Format::Plain, createGoal},
    {"create-some-goals", Access::Add, Format::Plain, createSomeGoals},
    {"delete-goal", Access::Change, Format::Plain, deleteGoal},
    {"delete-some-goals", Access::Change, Format::Plain, deleteSomeGoals},
    {setChecked, Access::Change, Format::Plain, setCheckedAreaPercent},
}};

constexpr RequestKind unknownKind;

std::string_view sentence(Outcome outcome)
{
    switch (outcome) {
    case Outcome::TooManyAttempts:
        return "Too many failed attempts. Please wait a minute and try again.";
    case Outcome::Busy:
        return "The service is busy. Please try again in a moment.";
    case Outcome::TooLarge:
        return "The request is too large.";
    case Outcome::Failed:
        return "The service could not do this. Please try again later.";
    case Outcome::Done:
    case Outcome::Invalid:
    case Outcome::NotSignedIn:
        break;
    }
    return "The login or the password is wrong.";
}

std::string refusalBody(const RequestKind &kind, Outcome outcome)
{
    if (kind.name == signInKind)
        return std::string(sentence(outcome));
    if (kind.name == createNewUser)
        return wire::signUpRefused(outcome == Outcome::Invalid ? "The sign-up could not be read."
                                                               : sentence(outcome));
    if (kind.name == setChecked)
        return ""; // the client would take any text for a percentage
    return "Error";
}

/// The kind that the field p1 names; a kind without name for anything else.
const RequestKind &requestKind(std::string_view name)
{
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [&](const RequestKind &kind) { return kind.name == name; });
    return found == kinds.end() ? unknownKind : *found;
}

} // namespace

std::size_t numberOf(const RequestKind &kind)
{
    return kind.name.empty() ? kindCount : static_cast<std::size_t>(&kind - kinds.data());
}

const RequestKind &kindAt(std::size_t number)
{
    if (number < kindCount)
        return kinds[number];
    return unknownKind;
}

const RequestKind &requestKindOfBody(std::string_view body)
{
    return requestKindOfBody(body, wire::Form(body));
}

const RequestKind &requestKindOfBody(std::string_view body, const wire::Form &form)
{
    if (wire::isSignUpBody(body))
        return requestKind(createNewUser);
    const RequestKind &kind = requestKind(form.field(/*number=*/1).value_or(""));
    return kind.name == createNewUser ? unknownKind : kind;
}

Answer refusalOf(const RequestKind &kind, Outcome outcome, Reason reason, std::string_view cause)
{
    const Format format = kind.name == createNewUser ? Format::Json : Format::Plain;
    return {.body = refusalBody(kind, outcome),
            .format = format,
            .outcome = outcome,
            .cause = std::string(cause),
            .reason = reason};
}

} // namespace tarvex::requests
