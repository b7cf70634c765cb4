#pragma once

#include "Answer.h"
#include "PageForm.h"
#include "PageTypes.h"
#include "WebSessions.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarvex::pages {

/// What a browser shows to be signed in.
struct Badge
{
    std::int64_t accountId = 0; ///< as it claims
    std::string tokenHash;      ///< what its session is found by
    std::string formToken;      ///< what its forms carry, so that nobody else's count
};

/// A request of a browser on its way through Site.
struct Visit
{
    /// What must be done before there is a reply.
    enum class Step {
        Reply,  ///< nothing
        Work,   ///< Site::goOn(), which takes its time and may wait for the disk
        Hash,   ///< the same with 20 ms and 19 MiB for a password
        SignUp, ///< a request of the protocol, and then Site::signedUp()
    };

    explicit Visit(Request asked) : request(std::move(asked)) {}
    ~Visit();
    Visit(const Visit &) = delete;
    Visit &operator=(const Visit &) = delete;

    /// Has something done next, in a step of that kind.
    void then(Step kind, std::function<void()> work)
    {
        step = kind;
        next = std::move(work);
    }
    void end(Reply answer)
    {
        step = Step::Reply;
        reply = std::move(answer);
    }

    /// Leaves no password in memory; to be called before the reply is sent, behind which nobody knows how
    /// long a visit lives.
    void forget();

    Request request;
    std::string path;
    PageForm query;
    PageForm form;
    std::optional<Badge> badge;
    std::optional<store::WebSession> session;

    Step step = Step::Reply;
    std::function<void()> next;
    std::string signUpBody; ///< as the protocol has it
    std::function<void(const requests::Answer &)> onceSignedUp;
    Reply reply;
};

} // namespace tarvex::pages
