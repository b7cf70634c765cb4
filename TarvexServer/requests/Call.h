#pragma once

#include "Answer.h"
#include "Connection.h"
#include "Form.h"
#include "RefusedSaves.h"

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace tarvex::requests {

/// The request cannot be done and nothing of it may stay.
class RequestRefused : public std::exception
{
public:
    explicit RequestRefused(Reason reason = Reason::None) : m_reason(reason) {}
    Reason reason() const { return m_reason; }

private:
    Reason m_reason;
};

/// One request of a signed-in account, inside its transaction.
struct Call
{
    store::Connection &connection;
    const wire::Form &form;
    RefusedSaves &refusedSaves;
    std::int64_t accountId = 0;
    const std::string &saver; ///< whose saves refusedSaves keeps apart
    std::int64_t now = 0;     ///< seconds since 1970
};

// The values of the fields p1 to p9. Each throws RequestRefused if the field is missing or not of its form.

std::string_view textField(const Call &call, int number);
std::int64_t idField(const Call &call, int number);
std::int32_t numberField(const Call &call, int number);
std::string nameField(const Call &call, int number);

/// Throws RequestRefused unless the condition holds.
void require(bool condition, Reason reason = Reason::None);

/// The body that tells the client of a change that was made.
std::string done();

/// Share of done goals as the client computes it: truncated, and 100 where there are no goals.
std::int64_t donePercent(std::int64_t checked, std::int64_t count);

} // namespace tarvex::requests
