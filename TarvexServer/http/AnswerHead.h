#pragma once

#include "Answer.h"
#include "PageTypes.h"

#include <boost/beast/http/message.hpp>
#include <cstddef>
#include <string>

namespace tarvex::http {

/// For proxies and people; the client reads the body alone.
boost::beast::http::status statusOf(requests::Outcome outcome);

/// All that goes before a body of so many bytes (RFC 9112, 4). Whether the connection is kept is said where
/// it is not.
std::string answerHead(boost::beast::http::status status, requests::Format format, std::size_t length,
                       bool isKept);

/// The same before a page.
std::string pageHead(const pages::Reply &reply, bool isKept);

} // namespace tarvex::http
