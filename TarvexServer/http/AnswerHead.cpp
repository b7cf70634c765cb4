#include "AnswerHead.h"

namespace tarvex::http {

namespace beast = boost::beast::http;
using requests::Outcome;

std::string_view contentType(requests::Format format)
{
    switch (format) {
    case requests::Format::Xml:
        return "text/xml; charset=utf-8";
    case requests::Format::Json:
        return "application/json; charset=utf-8";
    case requests::Format::Plain:
        break;
    }
    return "text/plain; charset=us-ascii";
}

beast::status statusOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Busy:
        return beast::status::service_unavailable;
    case Outcome::TooLarge:
        return beast::status::payload_too_large;
    case Outcome::Failed:
        return beast::status::internal_server_error;
    default:
        return beast::status::ok;
    }
}

} // namespace tarvex::http
