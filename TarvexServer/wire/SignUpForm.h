#pragma once

#include <optional>
#include <string_view>

namespace tarvex::wire {

/// What create-new-user carries: the three texts as they were typed. Views into the body.
struct SignUpForm
{
    std::string_view email;
    std::string_view password;
    std::string_view name;
    std::string_view code = {}; ///< not read here: that of an invitation, where the name ends with one
};

/// Whether a body is meant as create-new-user, complete or not.
bool isSignUpBody(std::string_view body);

/// Reads a create-new-user body by its anchors: the fixed head, the first "&p3=", the last "&p4=" and the
/// fixed tail. The texts travel unescaped, and this way a password may hold "&", "=", "+" or "%". Nothing if
/// an anchor is missing, as after a cut.
std::optional<SignUpForm> readSignUpForm(std::string_view body);

} // namespace tarvex::wire
