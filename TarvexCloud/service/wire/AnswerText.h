#pragma once

#include <optional>
#include <QByteArray>
#include <QString>
#include <string_view>

/// The answer as text, or nothing if it is not valid UTF-8. A byte order mark at its front is dropped.
std::optional<QString> utf8Text(const QByteArray &answer);

/// The answer as text, or nothing if a byte of it is not ASCII.
std::optional<QString> asciiText(const QByteArray &answer);

/// Without tabs and Unicode space separators at both ends. Line breaks stay: "OK\n" is not "OK".
QString withoutBlanksAround(const QString &text);

/// Whether a list answer is the service's word for a failure, exactly "Error".
bool isErrorAnswer(const QByteArray &answer);
/// The same for "Error" with blanks around it.
bool isErrorAnswerAmongBlanks(const QByteArray &answer);

/// The number a text starts with, after any ASCII white space and one sign; without digits 0. Values beyond
/// 32 bits become the nearest limit.
qint32 leadingInteger(std::string_view text);
