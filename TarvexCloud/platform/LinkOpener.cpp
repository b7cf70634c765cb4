#include "LinkOpener.h"

#include <QDesktopServices>

bool BrowserLinkOpener::openLink(const QUrl &address)
{
    return QDesktopServices::openUrl(address);
}
