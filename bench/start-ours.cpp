// The product as main assembles it, until its window's first frame.
#include "CurlExchange.h"
#include "DocumentController.h"
#include "FirstFrame.h"
#include "LinkOpener.h"
#include "ServiceAdapters.h"
#include "TarvexDocument.h"

#include <QMainWindow>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    HeldInputWait wait;
    CurlExchange exchange("http://127.0.0.1:1/tarvex/", std::chrono::seconds(1), wait);
    ServiceAlert alert;
    BrowserLinkOpener links;
    DocumentController controller(exchange, alert, links);
    const FirstFrame frame(controller.openUntitledDocument()->window());
    return QApplication::exec();
}
