#pragma once

#include "XKJsonValue.h"

#include <optional>

/// Whatever else a program puts into a tree. JSON has no form of its own for it, but it may offer one.
class XKJsonObject
{
public:
    virtual ~XKJsonObject() = default;

    /// What messages call it.
    virtual QString className() const = 0;
    /// The value to be written in its place; nothing if it offers none.
    virtual std::optional<XKJsonValue> proxyForJson() const { return std::nullopt; }
};
