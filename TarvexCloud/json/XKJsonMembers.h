#pragma once

#include "XKJsonArena.h"

/// The members of a dictionary that was read: each key, a string, and its value in turn.
namespace XKJsonMembers {
/// Copies members into the arena. Of several with one key the first keeps its place and the last its value.
XKJsonNode dictionaryOf(XKJsonNode *members, std::size_t count, XKJsonArena &arena);
/// The value under a key of such a dictionary; null if it has no such key.
const XKJsonNode *find(const XKJsonNode &dictionary, QStringView key);
} // namespace XKJsonMembers
