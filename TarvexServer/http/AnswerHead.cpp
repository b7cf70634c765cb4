#include "AnswerHead.h"

#include <string_view>

namespace tarvex::http {

namespace beast = boost::beast::http;
using requests::Outcome;

namespace {

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

} // namespace

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

std::string answerHead(beast::status status, requests::Format format, std::size_t length, bool isKept)
{
    const auto reason = beast::obsolete_reason(status);
    std::string head = "HTTP/1.1 " + std::to_string(static_cast<unsigned>(status)) + " ";
    head.append(reason.data(), reason.size());
    head.append("\r\nContent-Type: ").append(contentType(format));
    head.append("\r\nCache-Control: no-store\r\nContent-Length: ").append(std::to_string(length));
    if (status == beast::status::method_not_allowed)
        head.append("\r\nAllow: POST");
    return head.append(isKept ? "\r\n\r\n" : "\r\nConnection: close\r\n\r\n");
}

} // namespace tarvex::http
