#pragma once

#include "Answer.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tarvex::requests {

struct Call;

/// What one request may hold in bytes, and so the goals that one save can bring.
constexpr std::size_t largestBody = 4UL * 1024 * 1024;

enum class Access {
    None,
    Read,
    Change,
    Add, ///< may make what is kept larger, which it may not on every disk
};

/// What there is to know of one kind of request.
struct RequestKind
{
    /// Serves the request inside its transaction and returns the answer's body. Throws RequestRefused, which
    /// undoes whatever it has written.
    using Handler = std::string (*)(Call &);

    std::string_view name; ///< as p1 spells it
    Access access = Access::None;
    Format format = Format::Plain;
    Handler handler = nullptr;
};

/// The kind that the field p1 names; a kind without name for anything else.
const RequestKind &requestKind(std::string_view name);

/// The kind that a whole body, or its first bytes, asks for.
const RequestKind &requestKindOfBody(std::string_view body);

/// The answer to a request of that kind which was not done.
Answer refusalOf(const RequestKind &kind, Outcome outcome);

} // namespace tarvex::requests
