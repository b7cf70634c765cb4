#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tarvex::requests {

enum class Format { Plain, Xml, Json };

/// How a request ended. Each kind of request has its own words for the ends other than Done.
enum class Outcome {
    Done,
    Invalid,         ///< it asks for something that is not there or cannot be read
    NotSignedIn,     ///< unknown login or wrong password, which nobody can tell apart
    TooManyAttempts, ///< the failed sign-ins of the last minute have used up the limit
    Busy,            ///< the service has too much to do, or is going down
    TooLarge,        ///< the body is longer than the service takes
    Failed,          ///< the store could not do it
};

/// What the operator calls the outcomes, in their order.
constexpr std::array<std::string_view, 7> outcomes = {
    "done", "invalid", "not-signed-in", "too-many-attempts", "busy", "too-large", "failed"};

/// Why a request came to nothing, where its outcome does not tell the operator.
enum class Reason {
    None,
    Quota,       ///< the account holds as much as it may
    NoRoom,      ///< the database or its disk does
    NoAccounts,  ///< there are as many accounts as there may be
    RefusedSave, ///< a delete, whose goals the save before it was to replace
};

/// What the operator calls the reasons, in their order.
constexpr std::array<std::string_view, 5> reasons = {"", "quota", "no-room", "no-accounts", "refused-save"};

/// What goes back to the client, byte for byte, and what the operator may know of it.
struct Answer
{
    std::string body;
    Format format = Format::Plain;
    Outcome outcome = Outcome::Done;
    std::string cause = {}; ///< of a failure: the store's own text, without any of the request's values
    Reason reason = Reason::None;
    bool isBeingNoted = false; ///< see Service::onceNoted()
};

} // namespace tarvex::requests
