// From the click on Sign In until the wheel is painted, or the same requests by a bare libcurl handle.
//   bench-sign-in ours|peer URL LOGIN PASSWORD     prints seconds
#include "CurlExchange.h"
#include "DocumentController.h"
#include "FormString.h"
#include "LinkOpener.h"
#include "ServiceAdapters.h"
#include "SignInSheet.h"
#include "TarvexDocument.h"
#include "TarvexView.h"

#include <chrono>
#include <cstdio>
#include <curl/curl.h>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

size_t append(char *bytes, size_t size, size_t count, void *answer)
{
    static_cast<QByteArray *>(answer)->append(bytes, static_cast<qsizetype>(size * count));
    return size * count;
}

Clock::duration ofBareRequests(const QByteArray &url, const QString &login, const QString &password)
{
    CURL *easy = curl_easy_init();
    QByteArray answer;
    curl_easy_setopt(easy, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &answer);
    const auto begin = Clock::now();
    for (const auto kind : {"sign-in"_L1, "get-sets"_L1, "get-areas"_L1}) {
        FormString form(kind);
        form.credentials(login, password);
        const QByteArray body = form.body();
        answer.clear();
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE, long(body.size()));
        curl_easy_setopt(easy, CURLOPT_COPYPOSTFIELDS, body.constData());
        if (curl_easy_perform(easy) != CURLE_OK || answer.contains("Error"))
            qFatal("no answer");
    }
    const auto end = Clock::now();
    curl_easy_cleanup(easy);
    return end - begin;
}

Clock::duration ofClient(const QByteArray &url, const QString &login, const QString &password)
{
    HeldInputWait wait;
    CurlExchange exchange(url, std::chrono::seconds(30), wait);
    ServiceAlert alert;
    BrowserLinkOpener links;
    DocumentController controller(exchange, alert, links, /*beforeSignIn=*/std::chrono::milliseconds(0));
    TarvexDocument *document = controller.openUntitledDocument();
    auto *sheet = static_cast<SignInSheet *>(document->wndSignIn());
    while (!sheet->isActiveWindow())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    sheet->textUsername()->setText(login);
    sheet->textPassword()->setText(password);
    const auto begin = Clock::now();
    Q_EMIT sheet->signInRequested();
    QCoreApplication::processEvents(); // what else the sheet's going leaves to be painted
    const auto end = Clock::now();
    if (!document->wheelView()->isVisible() || sheet->isVisible())
        qFatal("not signed in");
    return end - begin;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() != 4)
        qFatal("ours|peer URL LOGIN PASSWORD");
    const auto measure = arguments[0] == u"ours"_s ? ofClient : ofBareRequests;
    const std::chrono::duration<double> taken =
        measure(arguments[1].toLatin1(), /*login=*/arguments[2], /*password=*/arguments[3]);
    std::printf("%.6f\n", taken.count());
}
