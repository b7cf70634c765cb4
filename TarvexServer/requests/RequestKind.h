#pragma once

#include "Answer.h"
#include "Form.h"

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

constexpr std::size_t kindCount = 17;

/// The place of a kind among all of them; kindCount for a kind without name.
std::size_t numberOf(const RequestKind &kind);
/// The kind at that place.
const RequestKind &kindAt(std::size_t number);

/// The kind that a whole body, or its first bytes, asks for.
const RequestKind &requestKindOfBody(std::string_view body);
/// The same of one that was split already.
const RequestKind &requestKindOfBody(std::string_view body, const wire::Form &form);

/// The answer to a request of that kind which was not done.
Answer refusalOf(const RequestKind &kind, Outcome outcome, Reason reason = Reason::None,
                 std::string_view cause = "");

} // namespace tarvex::requests
