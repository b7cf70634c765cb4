#pragma once

#include <QLatin1String>
#include <QString>

/// The domain of the platform's own status codes.
inline constexpr QLatin1String NSOSStatusErrorDomain("NSOSStatusErrorDomain");

/// Why a document could not be written or read.
struct DocumentError
{
    QString domain;
    int code = 0;

    bool operator==(const DocumentError &) const = default;
};
