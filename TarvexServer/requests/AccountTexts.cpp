#include "AccountTexts.h"

#include "WireText.h"

#include <boost/regex.hpp>

namespace tarvex::requests {

namespace {

constexpr std::size_t maximumEmailSize = 254; // RFC 5321, 4.5.3.1.3, without the angle brackets

/// One "@", the characters addresses are usually made of, and a domain with a dot: what the client accepts,
/// and top-level domains of any length besides.
bool isEmailAddress(std::string_view text)
{
    static const boost::regex form(R"([A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,})");
    return boost::regex_match(text.begin(), text.end(), form);
}

} // namespace

std::string_view textsFault(std::string_view email, std::string_view password, std::string_view name)
{
    if (email.empty() || password.empty() || name.empty())
        return "You must fill in all fields.";
    if (email.size() > maximumEmailSize)
        return "The e-mail address is too long.";
    if (!passwordFault(password).empty() || !wire::storableName(name))
        return "The name or the password is too long.";
    if (!isEmailAddress(email))
        return "The e-mail address is not valid.";
    return {};
}

std::string_view passwordFault(std::string_view password)
{
    if (password.empty())
        return "There is no password.";
    if (password.size() > wire::maximumNameSize)
        return "The password is too long.";
    return {};
}

} // namespace tarvex::requests
