#include "ApplicationMenuBar.h"
#include "CurlExchange.h"
#include "DocumentController.h"
#include "LinkOpener.h"
#include "NoDisplay.h"
#include "ServiceAdapters.h"

#include <QApplication>
#include <QFontInfo>
#include <QIcon>

using namespace Qt::StringLiterals;

#ifndef Q_OS_MACOS // where the bundle has the icon
static QIcon applicationIcon()
{
    QIcon own; // for where no icon theme has it
    for (const int side : {16, 32, 64, 256})
        own.addFile(u":/icon/%1.png"_s.arg(side));
    return QIcon::fromTheme(u"tarvex-cloud"_s, own);
}
#endif

int main(int argc, char *argv[])
{
    using namespace std::chrono_literals;
    qInstallMessageHandler(endForWantOfDisplay);
    const QApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    if (QFontInfo(QApplication::font()).pixelSize() <= 0)
        qWarning("No font is installed, so nothing can be read. Install one, DejaVu Sans say.");
    QApplication::setQuitOnLastWindowClosed(false);
    HeldInputWait wait;
    CurlExchange exchange(QByteArray(TARVEX_SERVICE_URL), 30s, wait);
    ServiceAlert alert;
    BrowserLinkOpener links;
    DocumentController controller(exchange, alert, links);
#ifdef Q_OS_MACOS
    const ApplicationMenuBar menuBar(controller);
#else
    QGuiApplication::setDesktopFileName(u"tarvex-cloud"_s);
    QApplication::setWindowIcon(applicationIcon());
    // Without a menu bar of its own an application with no window could not be reached.
    QObject::connect(&controller, &DocumentController::lastDocumentClosed, &controller,
                     &DocumentController::quit, Qt::QueuedConnection);
#endif
    controller.openUntitledDocument();
    return QApplication::exec();
}
