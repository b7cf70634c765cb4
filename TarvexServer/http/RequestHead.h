#pragma once

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/status.hpp>
#include <optional>
#include <string_view>

namespace tarvex::http {

using HeadParser = boost::beast::http::request_parser<boost::beast::http::empty_body>;

struct HeadFault
{
    boost::beast::http::status status;
    std::string_view sentence;
};

/// Why a request whose head was read is none of the protocol; nothing if it is one, and states its length.
std::optional<HeadFault> faultOf(const HeadParser &parser);

/// Whether a request asks for something beside the protocol.
bool isForPages(const HeadParser &parser);
/// Why such a request cannot be served; nothing if it can, whatever it asks for.
std::optional<HeadFault> pageFaultOf(const HeadParser &parser);
/// What it asks for: path and query.
std::string_view targetOf(const HeadParser &parser);

} // namespace tarvex::http
