#include "Replies.h"

namespace tarvex::pages {

using requests::Outcome;

namespace {

/// Nothing from elsewhere, no script, no frame, and no word to others of where a link was followed.
constexpr std::string_view guards =
    "Content-Security-Policy: default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self';"
    " frame-ancestors 'none'; base-uri 'none'\r\n"
    "X-Content-Type-Options: nosniff\r\n"
    "Referrer-Policy: same-origin\r\n"
    "Cross-Origin-Opener-Policy: same-origin\r\n"
    "Cross-Origin-Resource-Policy: same-origin\r\n";

Reply reply(unsigned status, std::string_view contentType, std::string_view keeping, std::string body)
{
    Reply made{.status = status, .fields = {}, .body = std::move(body)};
    made.fields.append("Content-Type: ").append(contentType).append("\r\nCache-Control: ").append(keeping);
    made.fields.append("\r\n").append(guards);
    return made;
}

} // namespace

Reply htmlReply(unsigned status, std::string body)
{
    return reply(status, "text/html; charset=utf-8", "no-store", std::move(body));
}

Reply commonReply(std::string_view contentType, std::string body, long seconds)
{
    return reply(/*status=*/200, contentType, "public, max-age=" + std::to_string(seconds), std::move(body));
}

Reply fileReply(std::string_view contentType, std::string_view name, std::string body)
{
    Reply made = reply(/*status=*/200, contentType, "no-store", std::move(body));
    made.fields.append("Content-Disposition: attachment; filename=\"").append(name).append("\"\r\n");
    return made;
}

Reply redirect(std::string_view address)
{
    Reply made = htmlReply(/*status=*/303, "");
    made.fields.append("Location: ").append(address).append("\r\n");
    return made;
}

const char *problemOf(Outcome outcome, const char *ifWrong)
{
    switch (outcome) {
    case Outcome::TooManyAttempts:
        return "Too many failed attempts. Please wait a minute and try again.";
    case Outcome::Busy:
        return "The service is busy. Please try again in a moment.";
    default:
        return ifWrong;
    }
}

unsigned statusOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::TooManyAttempts:
        return 429;
    case Outcome::Busy:
    case Outcome::Failed:
        return 503;
    default:
        return 403;
    }
}

std::string_view cookieName(bool isEncrypted)
{
    return isEncrypted ? "__Host-tarvex" : "tarvex";
}

std::string cookieField(std::string_view value, bool isEncrypted)
{
    std::string field = "Set-Cookie: ";
    field.append(cookieName(isEncrypted)).append("=").append(value);
    field.append("; Path=/; HttpOnly; SameSite=Strict");
    if (isEncrypted)
        field.append("; Secure");
    if (value.empty())
        field.append("; Max-Age=0");
    return field.append("\r\n");
}

} // namespace tarvex::pages
