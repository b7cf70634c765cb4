#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <QString>
#include <span>

using Bytes = std::span<const std::uint8_t>;

/// What every target is: fed any bytes, it comes back unless something required does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

inline void require(bool holds, const char *claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", claim);
    std::abort();
}

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
