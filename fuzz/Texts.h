#pragma once

#include "Fuzz.h"

#include <cstring>
#include <QString>

/// The text that bytes stand for: UTF-8, or any UTF-16 units behind a byte that no UTF-8 has.
inline QString textOf(Bytes bytes)
{
    const auto size = static_cast<qsizetype>(bytes.size());
    if (bytes.empty() || bytes[0] != 0xFF)
        return QString::fromUtf8(reinterpret_cast<const char *>(bytes.data()), size);
    QString text((size - 1) / 2, Qt::Uninitialized);
    std::memcpy(text.data(), bytes.data() + 1, static_cast<std::size_t>(text.size()) * sizeof(QChar));
    return text;
}
