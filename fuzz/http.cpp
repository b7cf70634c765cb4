// The head of a request. What is served is a POST of the protocol that states its length and names one host.

#include "Fuzz.h"
#include "RequestHead.h"

#include <boost/asio/buffer.hpp>

using namespace tarvex;
namespace beast = boost::beast::http;

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    http::HeadParser parser;
    parser.header_limit(8 * 1024);
    parser.body_limit(boost::none);
    boost::beast::error_code error;
    parser.put(boost::asio::buffer(bytes, size), error);
    if (error || !parser.is_header_done() || http::faultOf(parser))
        return 0;
    const auto &head = parser.get();
    require(head.method() == beast::verb::post && head.target().ends_with("/tarvex/"),
            "it is one of the protocol");
    require(parser.content_length().has_value() && !parser.chunked(), "it states its length");
    require(head.version() < 11 || head.count(beast::field::host) == 1, "it names one host");
    require(head.count(beast::field::content_length) == 1, "it states its length once");
    return 0;
}
