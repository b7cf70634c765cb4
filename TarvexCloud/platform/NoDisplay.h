#pragma once

#include <QtGlobal>

/// A message handler for as long as the application is made: what the toolkit would crash with for want of a
/// display ends the program with the code 1 and a sentence, and other messages go where they always go.
void endForWantOfDisplay(QtMsgType type, const QMessageLogContext &context, const QString &message);
