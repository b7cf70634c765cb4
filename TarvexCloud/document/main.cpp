#include "ApplicationMenuBar.h"
#include "CurlExchange.h"
#include "DocumentController.h"
#include "LinkOpener.h"
#include "ServiceAdapters.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    using namespace std::chrono_literals;
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    HeldInputWait wait;
    CurlExchange exchange(QByteArray(TARVEX_SERVICE_URL), 30s, wait);
    ServiceAlert alert;
    BrowserLinkOpener links;
    DocumentController controller(exchange, alert, links);
#ifdef Q_OS_MACOS
    const ApplicationMenuBar menuBar(controller);
#else
    // Without a menu bar of its own an application with no window could not be reached.
    QObject::connect(&controller, &DocumentController::lastDocumentClosed, &application, &QApplication::quit,
                     Qt::QueuedConnection);
#endif
    controller.openUntitledDocument();
    return QApplication::exec();
}
