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

/// The line that every answer begins with.
std::string statusLine(beast::status status)
{
    const auto reason = beast::obsolete_reason(status);
    std::string line = "HTTP/1.1 " + std::to_string(static_cast<unsigned>(status)) + " ";
    return line.append(reason.data(), reason.size()).append("\r\n");
}

std::string_view end(bool isKept)
{
    return isKept ? "\r\n\r\n" : "\r\nConnection: close\r\n\r\n";
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
    std::string head = statusLine(status);
    head.append("Content-Type: ").append(contentType(format));
    head.append("\r\nCache-Control: no-store\r\nContent-Length: ").append(std::to_string(length));
    if (status == beast::status::method_not_allowed)
        head.append("\r\nAllow: POST");
    return head.append(end(isKept));
}

std::string pageHead(const pages::Reply &reply, bool isKept)
{
    std::string head = statusLine(beast::int_to_status(reply.status));
    head.append(reply.fields).append("Content-Length: ").append(std::to_string(reply.body.size()));
    return head.append(end(isKept));
}

} // namespace tarvex::http
