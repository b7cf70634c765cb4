#pragma once

#include <chrono>
#include <optional>
#include <QByteArray>
#include <QString>

/// What became of one request. An answer is data, an empty body included; without data there was no answer,
/// and errorDescription tells a person why.
struct TVXAnswer
{
    std::optional<QByteArray> data;
    QString errorDescription;
    bool mayHaveArrived = false; ///< without an answer: whether the service may have acted upon the request
};

/// What a request does to the service. One that only reads may reach it twice.
enum class TVXPurpose { Reading, Writing };

/// Sends one request body to the service and waits for the answer.
class TVXExchange
{
public:
    virtual ~TVXExchange() = default;

    /// Blocks its caller until the answer or the failure is there. What writes reaches the service at most
    /// once, whatever happens on the way: a form that arrived twice would be acted upon twice. What reads is
    /// sent once more where a connection kept from before ended without a line of the answer. While another
    /// call is under way nothing is sent and there is no answer.
    virtual TVXAnswer post(const QByteArray &body, TVXPurpose purpose = TVXPurpose::Writing) = 0;

    /// Gets ready what the first call of post() would else have to, while nobody waits.
    virtual void prepare() {}

    /// Whether a call of post() is under way, which only code run by the waiting itself can see.
    virtual bool isBusy() const = 0;

    /// How long a call of post() takes at most.
    virtual std::chrono::milliseconds deadline() const = 0;

    /// The service's host and port, for people.
    virtual QString address() const = 0;
};
