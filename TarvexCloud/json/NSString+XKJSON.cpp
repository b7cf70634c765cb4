#include "NSString+XKJSON.h"

#include "XKJsonLog.h"
#include "XKJsonParser.h"

XKJsonValue NSString_XKJSON::JSONValue(const QString &text)
{
    XKJsonParser parser;
    XKJsonValue value = parser.objectWithString(text);
    if (value.isNone())
        qCWarning(xkJson).noquote() << "-JSONValue failed. Error trace is:" << parser.errorTraceDescription();
    return value;
}
