#pragma once

#include <QString>

/// Why a request got no answer.
enum class ExchangeError {
    Busy,
    HostNotFound,
    Unreachable,
    TimedOut,
    ConnectionLost,
    NotAWebService,
    AnswerTooLarge,
    Other,
};

/// The reason behind a libcurl result code other than CURLE_OK.
ExchangeError exchangeErrorOfCurl(int code);

/// Whether the service may have acted upon the request all the same.
bool mayHaveArrived(ExchangeError error);

/// Why there is no answer, and what to do about the network or the service, in plain words.
/// @param address  the service's host and port
/// @param detail  the transfer library's own words; used where ours could only be vague
QString describe(ExchangeError error, const QString &address, const QString &detail);
