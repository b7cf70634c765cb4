#include "ExchangeError.h"

#include <curl/curl.h>
#include <QCoreApplication>

namespace {

QString translated(const char *sentence)
{
    return QCoreApplication::translate("ExchangeError", sentence);
}

const char *sentence(ExchangeError error)
{
    switch (error) {
    case ExchangeError::Busy:
        return QT_TRANSLATE_NOOP(
            "ExchangeError", "Another request is still under way. Wait until it has ended, then try again.");
    case ExchangeError::HostNotFound:
        return QT_TRANSLATE_NOOP("ExchangeError",
                                 "The computer of the service, %1, could not be found. Check "
                                 "your network connection, then try again.");
    case ExchangeError::Unreachable:
        return QT_TRANSLATE_NOOP("ExchangeError",
                                 "Could not connect to the service at %1. Check your network "
                                 "connection and that the service is running, then try again.");
    case ExchangeError::TimedOut:
        return QT_TRANSLATE_NOOP("ExchangeError", "The service at %1 did not answer in time.");
    case ExchangeError::ConnectionLost:
        return QT_TRANSLATE_NOOP("ExchangeError",
                                 "The connection to %1 was lost before the answer was complete.");
    case ExchangeError::NotAWebService:
        return QT_TRANSLATE_NOOP("ExchangeError",
                                 "What answered at %1 is not a web service. Ask whoever runs the "
                                 "service whether it is running as it should.");
    case ExchangeError::AnswerTooLarge:
        return QT_TRANSLATE_NOOP("ExchangeError",
                                 "The answer of %1 was too large and was not used. Ask whoever "
                                 "runs the service what is wrong with it.");
    case ExchangeError::Other:
        break;
    }
    return QT_TRANSLATE_NOOP("ExchangeError", "The request to %1 failed (%2). If it keeps happening, show "
                                              "this message to whoever runs the service.");
}

} // namespace

ExchangeError exchangeErrorOfCurl(int code)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return ExchangeError::HostNotFound;
    case CURLE_COULDNT_CONNECT:
        return ExchangeError::Unreachable;
    case CURLE_OPERATION_TIMEDOUT:
        return ExchangeError::TimedOut;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_ABORTED_BY_CALLBACK: // a kept connection died, and the request is not sent twice
        return ExchangeError::ConnectionLost;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL: // an answer without any header
        return ExchangeError::NotAWebService;
    default:
        return ExchangeError::Other;
    }
}

bool mayHaveArrived(ExchangeError error)
{
    return error == ExchangeError::TimedOut || error == ExchangeError::ConnectionLost ||
           error == ExchangeError::AnswerTooLarge || error == ExchangeError::Other;
}

QString describe(ExchangeError error, const QString &address, const QString &detail)
{
    QString text = translated(sentence(error));
    if (error == ExchangeError::Other)
        return text.arg(address, detail);
    return error == ExchangeError::Busy ? text : text.arg(address);
}
