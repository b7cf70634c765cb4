#include "Call.h"

#include "Decimal.h"
#include "WireText.h"

#include <optional>

namespace tarvex::requests {

namespace {

template<class Value>
Value present(const std::optional<Value> &value)
{
    if (!value)
        throw RequestRefused();
    return *value;
}

} // namespace

std::string_view textField(const Call &call, int number)
{
    return present(call.form.field(number));
}

std::int64_t idField(const Call &call, int number)
{
    return present(wire::wireId(textField(call, number)));
}

std::int32_t numberField(const Call &call, int number)
{
    return present(wire::decimal32(textField(call, number)));
}

std::string nameField(const Call &call, int number)
{
    return present(wire::storableName(textField(call, number)));
}

void require(bool condition, Reason reason)
{
    if (!condition)
        throw RequestRefused(reason);
}

std::string done()
{
    return "OK";
}

std::int64_t donePercent(std::int64_t checked, std::int64_t count)
{
    return count == 0 ? 100 : checked * 100 / count;
}

} // namespace tarvex::requests
