#include "Form.h"

#include <algorithm>

namespace tarvex::wire {

Form::Form(std::string_view body)
{
    while (!body.empty()) {
        const auto end = std::min(body.find('&'), body.size());
        const std::string_view field = body.substr(0, end);
        body.remove_prefix(std::min(end + 1, body.size()));
        if (field.size() < 3 || field[0] != 'p' || field[1] < '1' || field[1] > '9' || field[2] != '=')
            continue;
        auto &slot = m_fields[static_cast<std::size_t>(field[1] - '1')];
        if (!slot)
            slot = field.substr(3);
    }
}

std::optional<std::string_view> Form::field(int number) const
{
    return m_fields.at(static_cast<std::size_t>(number - 1));
}

} // namespace tarvex::wire
