#include "UserAgent.h"

QString clientUserAgent()
{
    // The platform's name is part of what services know this client by; it is the same on every platform.
    return QStringLiteral("Tarvex Cloud Mac OS X Client v." TARVEX_BUNDLE_VERSION);
}
