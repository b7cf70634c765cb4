#pragma once

#include "XKJsonValue.h"

namespace NSString_XKJSON {
/// The tree of a JSON text, or none; why there is none is then told to the log.
XKJsonValue JSONValue(const QString &text);
} // namespace NSString_XKJSON
