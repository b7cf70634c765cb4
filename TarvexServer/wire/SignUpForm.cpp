#include "SignUpForm.h"

namespace tarvex::wire {

constexpr std::string_view kindField = "p1=create-new-user";
constexpr std::string_view head = "p1=create-new-user&p2=";
constexpr std::string_view passwordMark = "&p3=";
constexpr std::string_view nameMark = "&p4=";
constexpr std::string_view tail = "&type=json";

bool isSignUpBody(std::string_view body)
{
    return body == kindField || (body.starts_with(kindField) && body[kindField.size()] == '&');
}

std::optional<SignUpForm> readSignUpForm(std::string_view body)
{
    if (!body.starts_with(head) || !body.ends_with(tail) || body.size() < head.size() + tail.size())
        return {};
    const std::string_view values = body.substr(head.size(), body.size() - head.size() - tail.size());
    const auto password = values.find(passwordMark);
    const auto name = values.rfind(nameMark);
    if (password == std::string_view::npos || name == std::string_view::npos ||
        name < password + passwordMark.size())
        return {};
    const auto passwordStart = password + passwordMark.size();
    return SignUpForm{.email = values.substr(0, password),
                      .password = values.substr(passwordStart, name - passwordStart),
                      .name = values.substr(name + nameMark.size())};
}

} // namespace tarvex::wire
