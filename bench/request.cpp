// One request to a service on loopback over a kept connection, against a kept libcurl handle that posts the
// same bytes; and what it costs to make a request's form.

#include "CurlExchange.h"
#include "FormString.h"
#include "LoopbackService.h"
#include "TVXRequestWait.h"

#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

class NoWait : public TVXRequestWait
{
public:
    void requestStarted() override {}
    void turn() override {}
    void requestEnded() override {}
};

QByteArray form()
{
    FormString form("create-sets"_L1);
    form.credentials(u"somebody@example.org"_s, u"a password of some length"_s);
    form.text("p4"_L1, u"Spring: health, work & family (50%)"_s).number("p5"_L1, /*value=*/42);
    return form.body();
}

void makeForm(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(form());
}

void postOurs(benchmark::State &state)
{
    LoopbackService service;
    NoWait wait;
    CurlExchange exchange(service.url(), std::chrono::seconds(30), wait);
    const QByteArray body = form();
    for (auto _ : state) {
        if (!exchange.post(body).data)
            state.SkipWithError("no answer");
    }
}

size_t append(char *bytes, size_t size, size_t count, void *answer)
{
    static_cast<std::string *>(answer)->append(bytes, size * count);
    return size * count;
}

void postByKeptHandle(benchmark::State &state)
{
    LoopbackService service;
    const QByteArray url = service.url();
    const QByteArray body = form();
    curl_slist *headers = nullptr;
    const QByteArray length = "Content-Length: " + QByteArray::number(body.size());
    for (const char *line : {length.constData(), "Content-Field: application/x-www-form-urlencoded",
                             "User-Agent: Tarvex Cloud Mac OS X Client v.0.1.0", "Expect:"})
        headers = curl_slist_append(headers, line);
    CURL *easy = curl_easy_init();
    curl_easy_setopt(easy, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, 30000L);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.constData());
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE, long(body.size()));
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, append);
    for (auto _ : state) {
        std::string answer;
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &answer);
        if (curl_easy_perform(easy) != CURLE_OK)
            state.SkipWithError("no answer");
    }
    curl_easy_cleanup(easy);
    curl_slist_free_all(headers);
}

BENCHMARK(postOurs)->Name("request/kept-connection/ours")->UseRealTime();
BENCHMARK(postByKeptHandle)->Name("request/kept-connection/peer-libcurl-easy")->UseRealTime();
BENCHMARK(makeForm)->Name("request/form-with-digests/ours");

} // namespace

int main(int count, char **arguments)
{
    const QCoreApplication application(count, arguments); // the service's thread has an event loop
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
