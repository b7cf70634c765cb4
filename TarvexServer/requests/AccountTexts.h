#pragma once

#include <string_view>

namespace tarvex::requests {

// What is wrong with the texts that an account is made of, as a sentence for whoever typed them; empty if
// they are in order.

std::string_view textsFault(std::string_view email, std::string_view password, std::string_view name);
std::string_view passwordFault(std::string_view password);

} // namespace tarvex::requests
