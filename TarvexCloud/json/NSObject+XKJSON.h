#pragma once

#include "XKJsonValue.h"

namespace NSObject_XKJSON {
/// The JSON text of a tree, or a null string; why there is none is then told to the log.
QString JSONRepresentation(const XKJsonValue &object);
} // namespace NSObject_XKJSON
