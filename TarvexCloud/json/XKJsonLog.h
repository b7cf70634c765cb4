#pragma once

#include <QLoggingCategory>

/// Where the codec's two entries tell of their failures.
Q_DECLARE_LOGGING_CATEGORY(xkJson)
