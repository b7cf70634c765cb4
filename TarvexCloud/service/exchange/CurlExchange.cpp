#include "CurlExchange.h"

#include "ExchangeError.h"
#include "TVXRequestWait.h"
#include "UserAgent.h"

#include <array>
#include <curl/curl.h>
#include <QScopeGuard>
#include <QUrl>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr qsizetype largestAnswer = qsizetype(128) * 1024 * 1024;
constexpr auto turnInterval = 10ms; // the window is painted meanwhile
constexpr long receiveBuffer = 64L * 1024;
// Below the idle limit of services, so that a kept connection is rarely one they are about to close.
constexpr long longestIdleSeconds = 20;

template<auto cleanUp>
struct Deleter
{
    void operator()(auto *handle) const { (void)cleanUp(handle); }
};

using EasyHandle = std::unique_ptr<CURL, Deleter<curl_easy_cleanup>>;
using MultiHandle = std::unique_ptr<CURLM, Deleter<curl_multi_cleanup>>;
using HeaderLines = std::unique_ptr<curl_slist, Deleter<curl_slist_free_all>>;

/// One request on its way, as libcurl's callbacks see it.
struct Transfer
{
    QByteArray answer = QByteArrayLiteral(""); // an empty answer is one
    int sendingsLeft = 1;
    bool isHeaderComplete = false;
    bool isTooLarge = false;
};

/// Asked before a request goes out on a connection. libcurl asks again when a kept connection died before the
/// answer and it would send everything once more on a fresh one.
int allowSending(void *data, char *, char *, int, int)
{
    return static_cast<Transfer *>(data)->sendingsLeft-- > 0 ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

// libcurl counts in bytes here: the size of an item is always 1.

size_t takeAnswer(char *bytes, size_t, size_t count, void *data)
{
    auto *transfer = static_cast<Transfer *>(data);
    const QByteArrayView piece(bytes, static_cast<qsizetype>(count));
    if (piece.size() > largestAnswer - transfer->answer.size()) {
        transfer->isTooLarge = true;
        return 0;
    }
    transfer->answer.append(piece);
    return count;
}

/// Told every header line, that of an interim answer included: only the last blank line counts.
size_t takeHeaderLine(char *bytes, size_t, size_t count, void *data)
{
    const QByteArrayView line(bytes, static_cast<qsizetype>(count));
    if (line.startsWith("HTTP/"))
        static_cast<Transfer *>(data)->isHeaderComplete = false;
    else if (line == "\r\n" || line == "\n")
        static_cast<Transfer *>(data)->isHeaderComplete = true;
    return count;
}

/// The lines of our own, in the order services expect.
HeaderLines headerLines(qsizetype bodyLength)
{
    const std::array<QByteArray, 4> lines = {"Content-Length: " + QByteArray::number(bodyLength),
                                             "Content-Field: application/x-www-form-urlencoded",
                                             "User-Agent: " + clientUserAgent().toUtf8(),
                                             "Expect:"}; // no waiting for leave to send the body
    HeaderLines list;
    for (const QByteArray &line : lines)
        list.reset(curl_slist_append(list.release(), line.constData()));
    return list;
}

} // namespace

/// What is kept from request to request: the settings, and the connection.
class CurlExchange::Handles
{
public:
    Handles(const QByteArray &url, std::chrono::milliseconds deadline)
    {
        curl_easy_setopt(easy(), CURLOPT_URL, url.constData());
        curl_easy_setopt(easy(), CURLOPT_PROTOCOLS_STR, "http");
        curl_easy_setopt(easy(), CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
        curl_easy_setopt(easy(), CURLOPT_PROXY, ""); // whatever the environment says
        curl_easy_setopt(easy(), CURLOPT_FOLLOWLOCATION, 0L);
        // Compression is not asked for: libcurl takes a stream that was cut inside for a whole answer.
        curl_easy_setopt(easy(), CURLOPT_TIMEOUT_MS, long(deadline.count()));
        curl_easy_setopt(easy(), CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy(), CURLOPT_QUICK_EXIT, 1L); // the deadline ends a hanging host look-up too
        curl_easy_setopt(easy(), CURLOPT_MAXAGE_CONN, longestIdleSeconds);
        curl_easy_setopt(easy(), CURLOPT_BUFFERSIZE, receiveBuffer);
        curl_easy_setopt(easy(), CURLOPT_POST, 1L);
        m_isGuarded = curl_easy_setopt(easy(), CURLOPT_PREREQFUNCTION, allowSending) == CURLE_OK;
        curl_easy_setopt(easy(), CURLOPT_WRITEFUNCTION, takeAnswer);
        curl_easy_setopt(easy(), CURLOPT_HEADERFUNCTION, takeHeaderLine);
        curl_easy_setopt(easy(), CURLOPT_ERRORBUFFER, m_detail.data());
    }

    /// libcurl's verdict; the application has its turn now and then while waiting for it.
    CURLcode perform(const QByteArray &body, Transfer &transfer, TVXRequestWait &application)
    {
        m_detail[0] = '\0';
        const HeaderLines headers = headerLines(body.size());
        curl_easy_setopt(easy(), CURLOPT_HTTPHEADER, headers.get());
        curl_easy_setopt(easy(), CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(body.size()));
        curl_easy_setopt(easy(), CURLOPT_POSTFIELDS, body.constData());
        curl_easy_setopt(easy(), CURLOPT_PREREQDATA, &transfer);
        curl_easy_setopt(easy(), CURLOPT_WRITEDATA, &transfer);
        curl_easy_setopt(easy(), CURLOPT_HEADERDATA, &transfer);
        if (!m_isGuarded || curl_multi_add_handle(m_multi.get(), easy()) != CURLM_OK)
            return CURLE_FAILED_INIT;
        const auto removed = qScopeGuard([&] { curl_multi_remove_handle(m_multi.get(), easy()); });
        return wait(application);
    }

    QString detail(CURLcode code) const
    {
        return QString::fromLocal8Bit(m_detail[0] ? m_detail.data() : curl_easy_strerror(code));
    }

private:
    CURL *easy() const { return m_easy.get(); }

    CURLcode wait(TVXRequestWait &application)
    {
        const auto started = Clock::now();
        auto lastTurn = started;
        int running = 0;
        while (curl_multi_perform(m_multi.get(), &running) == CURLM_OK && running > 0) {
            if (curl_multi_poll(m_multi.get(), nullptr, 0, turnInterval.count(), nullptr) != CURLM_OK)
                break;
            if (Clock::now() - lastTurn >= turnInterval) {
                application.turn();
                lastTurn = Clock::now();
            }
        }
        // What was typed since the last turn is to be dropped as well, not delivered after the request.
        if (Clock::now() - started > turnInterval)
            application.turn();
        int left = 0;
        const CURLMsg *message = curl_multi_info_read(m_multi.get(), &left);
        return message && message->msg == CURLMSG_DONE ? message->data.result : CURLE_FAILED_INIT;
    }

    bool m_isGuarded = false; // against a second sending
    std::array<char, CURL_ERROR_SIZE> m_detail{};
    const MultiHandle m_multi{curl_multi_init()};
    const EasyHandle m_easy{curl_easy_init()};
};

CurlExchange::CurlExchange(const QByteArray &url, std::chrono::milliseconds deadline, TVXRequestWait &wait)
    : m_url(url), m_deadline(deadline), m_wait(wait)
{
}

CurlExchange::~CurlExchange() = default;

QString CurlExchange::address() const
{
    return QUrl::fromEncoded(m_url).authority();
}

void CurlExchange::prepare()
{
    if (!m_handles)
        m_handles = std::make_unique<Handles>(m_url, m_deadline);
}

TVXAnswer CurlExchange::post(const QByteArray &body, TVXPurpose purpose)
{
    const auto failed = [this](ExchangeError error, const QString &detail = {}) {
        return TVXAnswer{std::nullopt, describe(error, address(), detail), mayHaveArrived(error)};
    };
    if (m_busy)
        return failed(ExchangeError::Busy);
    m_busy = true;
    const auto ended = qScopeGuard([this] {
        m_busy = false;
        m_wait.requestEnded();
    });
    m_wait.requestStarted();
    prepare();
    Transfer transfer{.sendingsLeft = purpose == TVXPurpose::Reading ? 2 : 1};
    const CURLcode code = m_handles->perform(body, transfer, m_wait);
    if (transfer.isTooLarge)
        return failed(ExchangeError::AnswerTooLarge);
    if (code != CURLE_OK)
        return failed(exchangeErrorOfCurl(code), m_handles->detail(code));
    if (!transfer.isHeaderComplete)
        return failed(ExchangeError::ConnectionLost);
    return {.data = transfer.answer, .errorDescription = {}};
}
