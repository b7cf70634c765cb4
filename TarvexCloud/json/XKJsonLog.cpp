#include "XKJsonLog.h"

Q_LOGGING_CATEGORY(xkJson, "tarvex.json")
