// What a session does for browsers.

#include "AnswerHead.h"
#include "Session.h"

namespace tarvex::http {

namespace beast = boost::beast::http;
using requests::Outcome;

namespace {

/// What the operator calls the end of a page.
Outcome outcomeOf(const pages::Reply &reply)
{
    switch (reply.status) {
    case 413:
        return Outcome::TooLarge;
    case 429:
        return Outcome::TooManyAttempts;
    case 503:
        return reply.cause.empty() ? Outcome::Busy : Outcome::Failed;
    case 507:
        return Outcome::Failed;
    default:
        return reply.status < 400 ? Outcome::Done : Outcome::Invalid;
    }
}

} // namespace

/// What the browser says of itself.
pages::Request Session::pageRequest()
{
    const auto &head = m_parser->get();
    const auto field = [&](std::string_view name) { return std::string(head[name]); };
    std::string cookies;
    const auto sent = head.equal_range(beast::field::cookie);
    for (auto cookie = sent.first; cookie != sent.second; ++cookie)
        cookies.append(cookies.empty() ? "" : "; ").append(cookie->value());
    return {.method = std::string(head.method_string()),
            .target = std::string(targetOf(*m_parser)),
            .host = field("Host"),
            .cookie = std::move(cookies),
            .contentType = field("Content-Type"),
            .origin = field("Origin"),
            .fetchSite = field("Sec-Fetch-Site"),
            .body = std::move(m_body),
            .peer = m_requestPeer,
            .isEncrypted = !m_proxy.empty() && field("X-Forwarded-Proto") == "https",
            .arrival = m_arrival};
}

void Session::servePage()
{
    m_context.workers.submit(*m_site, m_site->begin(pageRequest()), later(&Session::answerPage));
}

void Session::refusePage(Outcome outcome)
{
    answerPage({m_site->refusal(outcome)});
}

void Session::answerPage(BuiltPage built)
{
    endTurn();
    m_isKept = m_parser->get().keep_alive() && !m_isBodyLeft && !m_context.isDraining;
    const bool isHeadWanted = m_parser->get().method() == beast::verb::head;
    reportPage(built.reply);
    forgetRequest();
    m_answerShare = std::move(built.share);
    std::string head = pageHead(built.reply, m_isKept);
    send(std::move(head), isHeadWanted ? "" : std::move(built.reply.body));
}

void Session::reportPage(const pages::Reply &reply) const
{
    const auto time = std::chrono::steady_clock::now() - m_arrival;
    const Outcome outcome = outcomeOf(reply);
    m_context.service.measures().pages.add(outcome, time);
    if (m_context.report)
        m_context.report({.kind = "page",
                          .outcome = outcome,
                          .cause = reply.cause,
                          .peer = m_requestPeer,
                          .bytesIn = m_bodySize,
                          .bytesOut = reply.body.size(),
                          .time = std::chrono::duration_cast<std::chrono::microseconds>(time)});
}

} // namespace tarvex::http
