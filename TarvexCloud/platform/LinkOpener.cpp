#include "LinkOpener.h"

#include <QDesktopServices>

void BrowserLinkOpener::openLink(const QUrl &address)
{
    QDesktopServices::openUrl(address);
}
