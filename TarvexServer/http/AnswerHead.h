#pragma once

#include "Answer.h"

#include <boost/beast/http/message.hpp>
#include <string_view>

namespace tarvex::http {

std::string_view contentType(requests::Format format);

/// For proxies and people; the client reads the body alone.
boost::beast::http::status statusOf(requests::Outcome outcome);

} // namespace tarvex::http
