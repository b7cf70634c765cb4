#pragma once

#include <chrono>
#include <string>

namespace tarvex::pages {

/// What a browser asks for.
struct Request
{
    std::string method; ///< GET, HEAD or POST
    std::string target; ///< path and query
    std::string host;
    std::string cookie; ///< of several fields with "; " between them
    std::string contentType;
    std::string origin;    ///< where the form stands that was sent, empty if the browser does not say
    std::string fetchSite; ///< the same in a word: Sec-Fetch-Site
    std::string body;
    std::string peer;         ///< whom failed sign-ins are counted against; empty for nobody
    bool isEncrypted = false; ///< between the browser and whoever stands in front of the service
    std::chrono::steady_clock::time_point arrival;
};

struct Reply
{
    unsigned status = 200;
    std::string fields; ///< of the head, each with its line end, but for the length and the connection
    std::string body;
    std::string cause = {}; ///< of a failure, for the operator
};

} // namespace tarvex::pages
