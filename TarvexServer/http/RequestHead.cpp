#include "RequestHead.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>

namespace tarvex::http {

namespace beast = boost::beast::http;

namespace {

constexpr std::string_view servicePath = "/tarvex/";

using Head = HeadParser::value_type;

/// RFC 9112, 3.2: whoever speaks HTTP/1.1 names the host, once.
bool isHostSound(const Head &head)
{
    const auto count = head.count(beast::field::host);
    return head.version() < 11 ? count <= 1 : count == 1;
}

/// Whether the body comes in a form that is not known here; read as if it were plain, it could hide another
/// request.
bool isCodingUnknown(const Head &head)
{
    const auto coding = head.find(beast::field::transfer_encoding);
    return head.count(beast::field::transfer_encoding) > 1 ||
           (coding != head.end() && !boost::beast::iequals(coding->value(), "chunked"));
}

/// What is wrong with a head whatever it asks for.
std::optional<HeadFault> commonFaultOf(const Head &head)
{
    if (!isHostSound(head))
        return HeadFault{beast::status::bad_request, "The request must name one host."};
    if (head.count(beast::field::content_length) > 1) // be it the same
        return HeadFault{beast::status::bad_request, "The request must state its length once."};
    if (isCodingUnknown(head))
        return HeadFault{beast::status::not_implemented,
                         "The body is in a form that is not understood here."};
    return {};
}

/// Whether a browser sent it on behalf of a page, which may be anybody's: they say so, and nothing else does.
bool isFromPage(const Head &head)
{
    return head.count(beast::field::origin) > 0 || head.count("Sec-Fetch-Site") > 0;
}

constexpr HeadFault withoutLength{beast::status::length_required, "The request must state its length."};

} // namespace

std::optional<HeadFault> faultOf(const HeadParser &parser)
{
    const Head &head = parser.get();
    if (const auto fault = commonFaultOf(head))
        return fault;
    if (targetOf(parser) != servicePath)
        return HeadFault{beast::status::not_found, "There is nothing here."};
    if (head.method() != beast::verb::post)
        return HeadFault{beast::status::method_not_allowed, "The service answers POST requests only."};
    if (isFromPage(head))
        return HeadFault{beast::status::forbidden, "The service takes no requests from web pages."};
    if (parser.chunked() || !head.has_content_length())
        return withoutLength;
    return {};
}

bool isForPages(const HeadParser &parser)
{
    return !targetOf(parser).starts_with(servicePath);
}

std::optional<HeadFault> pageFaultOf(const HeadParser &parser)
{
    const Head &head = parser.get();
    if (const auto fault = commonFaultOf(head))
        return fault;
    if (parser.chunked())
        return withoutLength;
    return {};
}

std::string_view targetOf(const HeadParser &parser)
{
    constexpr std::string_view scheme = "http://"; // RFC 9112, 3.2.2: for proxies, but must be understood
    std::string_view target = parser.get().target();
    if (!target.starts_with(scheme))
        return target;
    target.remove_prefix(scheme.size());
    return target.substr(std::min(target.find('/'), target.size()));
}

} // namespace tarvex::http
