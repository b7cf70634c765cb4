#include "NSObject+XKJSON.h"

#include "XKJsonLog.h"
#include "XKJsonWriter.h"

QString NSObject_XKJSON::JSONRepresentation(const XKJsonValue &object)
{
    XKJsonWriter writer;
    QString text = writer.stringWithObject(object);
    if (text.isNull())
        qCWarning(xkJson).noquote() << "-JSONRepresentation failed. Error trace is:"
                                    << writer.errorTraceDescription();
    return text;
}
