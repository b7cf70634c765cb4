#pragma once

#include <QString>

/// The User-Agent text of every request; it ends in the version this client was built as.
QString clientUserAgent();
