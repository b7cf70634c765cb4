#include "SignUpAnswer.h"

#include <boost/json.hpp>

namespace tarvex::wire {

std::string signUpAccepted()
{
    return boost::json::serialize(boost::json::object{{"result", "OK"}});
}

std::string signUpRefused(std::string_view message)
{
    return boost::json::serialize(boost::json::object{
        {"result", "Error"}, {"message", boost::json::string_view(message.data(), message.size())}});
}

} // namespace tarvex::wire
