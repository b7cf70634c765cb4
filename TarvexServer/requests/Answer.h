#pragma once

#include <string>

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

/// What goes back to the client, byte for byte, and what the operator may know of it.
struct Answer
{
    std::string body;
    Format format = Format::Plain;
    Outcome outcome = Outcome::Done;
    std::string cause = {}; ///< of a failure: the store's own text, without any of the request's values
};

} // namespace tarvex::requests
