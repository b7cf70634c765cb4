#include "NoDisplay.h"

#include <cstdio>
#include <cstdlib>
#include <QString>

void endForWantOfDisplay(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtFatalMsg) {
        std::fputs("Tarvex Cloud needs a display for its window, and none could be opened.\n", stderr);
        std::_Exit(EXIT_FAILURE);
    }
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}
