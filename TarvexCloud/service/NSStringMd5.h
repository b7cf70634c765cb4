#pragma once

#include <QString>

/// The form in which a login or a password travels: the MD5 digest (RFC 1321) of the text's UTF-8 bytes up to
/// the first zero byte, as 32 upper-case hexadecimal digits.
QString MD5(const QString &text);
